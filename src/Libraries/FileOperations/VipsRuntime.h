// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationSetting.h"

#include <expected>
#include <memory>
#include <QString>
#include <QStringList>

typedef struct _VipsImage VipsImage;
class QImage;

namespace Vantrope {

// libvips as the image operations use it: started once for the process, with its operation cache off
// (it keys results by file name, so a file changed on disk would come back as it was). Images are held
// in `VipsRuntime::Image`, which drops its reference when it goes.
class VipsRuntime final {
public:
    struct Unref {
        void operator()(VipsImage* image) const;
    };
    using Image = std::unique_ptr<VipsImage, Unref>;

    // Starts libvips on first use, from any thread; false when it could not start.
    static bool start();

    // Whether a saver for `suffix` (".webp") is built into this machine's libvips.
    static bool canSave(const QString& suffix);
    // The file name suffixes, with their dots, of every loader this libvips has.
    static QStringList loadableSuffixes();

    // Takes and clears libvips's error text, for the log.
    static QString takeError();

    // Loads `path` lazily, failing on truncated or damaged data when it is read rather than answering grey
    // pixels; "access=sequential" where the image is read once from top to bottom.
    static Image load(const QString& path, bool sequential);

    // Writes `image` to `path` (the suffix picks the format, `options` the saver's: "[Q=80]"), checking
    // the context while pixels are computed: a cancel stops the write. Answers libvips's error on failure;
    // `cancelled` tells whether the failure was the cancel.
    static std::expected<void, QString> write(VipsImage* image, const QString& path, const QString& options,
                                              const FileOperationContext& context, double progressStart,
                                              double progressSpan, const QString& title, bool* cancelled);

    // The image as 8-bit sRGB (with alpha when it has one) in a QImage, computed now.
    static std::expected<QImage, QString> toQImage(VipsImage* image);
};

} // namespace Vantrope
