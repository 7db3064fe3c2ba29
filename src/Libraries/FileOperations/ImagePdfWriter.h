// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationSetting.h"

#include <QString>
#include <QStringList>

namespace Vantrope {

// A PDF of images, one page each, through QPdfWriter. Images are decoded one at a time and no larger
// than their page needs, so memory stays bounded however many or large they are.
class ImagePdfWriter final {
public:
    enum class PageSize {
        fitImage, // each page the image's size, at its recorded resolution (150 dpi when it has none)
        a4,       // portrait or landscape, as the image is, with a margin
        letter,
    };

    // Writes "<first image's name>.pdf" in `outputDirectory`; an image that cannot be read is a failure
    // and gets no page. Nothing is written when no image could be read or the run was cancelled.
    static FileOperationOutcome write(const QStringList& files, PageSize pageSize,
                                      const QString& outputDirectory, const FileOperationContext& context);
};

} // namespace Vantrope
