// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <QImage>
#include <QList>
#include <QSize>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Composes one picture from the first files of a list: their previews as a small pile, the first file
// on top. Needs no widgets and runs on any thread.
class FilesSnapshotGenerator final {
public:
    struct Error {
        enum class Kind {
            noFiles,  // the list holds no local file
            noImages, // none of the files gave a picture
            badSize,
        };
        Kind kind = Kind::noFiles;
        QString description() const;
    };

    // The picture of one file fitted into `size`; a null image leaves the file out.
    using ImageProvider = std::function<QImage(const QUrl& file, const QSize& size)>;

    FilesSnapshotGenerator(QList<QUrl> urls, const QSize& size, int maximumNumberOfFiles,
                           ImageProvider imageProvider = {});

    std::expected<QImage, Error> generate() const;

    // Previews on the main thread; elsewhere, where icon themes cannot be used, image files are read
    // directly and other files get the generic document.
    static QImage defaultImage(const QUrl& file, const QSize& size);

private:
    QList<QUrl> m_urls;
    QSize m_size;
    int m_maximumNumberOfFiles;
    ImageProvider m_imageProvider;
};

} // namespace Vantrope
