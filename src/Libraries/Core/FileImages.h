// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QImage>
#include <QSize>
#include <QString>

namespace Vantrope {

// Pictures of files for the shelf: the icon of a file's type, or a scaled preview of an image file.
class FileImages final {
public:
    // The icon theme's picture for the file's MIME type, falling back to the type's generic icon and
    // then to a drawn document. Draws through QIcon's pixmaps, so call it on the main thread.
    static QImage iconImage(const QString& path, const QSize& size);

    // The file's own picture scaled to fit `size` when it is an image that can be read; the icon
    // otherwise. Main thread, because of the icon.
    static QImage previewImage(const QString& path, const QSize& size);

    // The scaled picture alone; null when the file is no readable image. Safe on any thread.
    static QImage thumbnailImage(const QString& path, const QSize& size);

    // A plain document drawn in code, for when the icon theme has nothing. Safe on any thread.
    static QImage genericIconImage(const QSize& size);
};

} // namespace Vantrope
