// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileImages.h"

#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace Vantrope {

namespace {

QImage sized(const QImage& image, const QSize& size)
{
    if (image.isNull() || image.size() == size) {
        return image;
    }
    return image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage themeIcon(const QString& name, const QSize& size)
{
    if (name.isEmpty()) {
        return {};
    }
    const QIcon icon = QIcon::fromTheme(name);
    if (icon.isNull()) {
        return {};
    }
    return sized(icon.pixmap(size).toImage(), size);
}

} // namespace

QImage FileImages::iconImage(const QString& path, const QSize& size)
{
    if (size.isEmpty()) {
        return {};
    }
    const QMimeType mime = QMimeDatabase().mimeTypeForFile(path);
    QImage image = themeIcon(mime.iconName(), size);
    if (image.isNull()) {
        image = themeIcon(mime.genericIconName(), size);
    }
    return image.isNull() ? genericIconImage(size) : image;
}

QImage FileImages::previewImage(const QString& path, const QSize& size)
{
    const QImage thumbnail = thumbnailImage(path, size);
    return thumbnail.isNull() ? iconImage(path, size) : thumbnail;
}

QImage FileImages::thumbnailImage(const QString& path, const QSize& size)
{
    // Only regular files: opening a pipe or a device would block until someone writes to it.
    if (size.isEmpty() || !QFileInfo(path).isFile()) {
        return {};
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    if (!reader.canRead()) {
        return {};
    }
    // Decoding at the target size keeps a large photo from being read whole.
    const QSize original = reader.size();
    if (original.isValid() && !original.isEmpty()) {
        reader.setScaledSize(original.scaled(size, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    return sized(reader.read(), size);
}

QImage FileImages::genericIconImage(const QSize& size)
{
    if (size.isEmpty()) {
        return {};
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);

    const qreal side = qMin(size.width(), size.height());
    const qreal width = side * 0.75;
    const qreal fold = width * 0.3;
    const QRectF page((size.width() - width) / 2.0, (size.height() - side) / 2.0 + side * 0.04, width,
                      side * 0.92);

    QPainterPath outline;
    outline.moveTo(page.topLeft());
    outline.lineTo(page.right() - fold, page.top());
    outline.lineTo(page.right(), page.top() + fold);
    outline.lineTo(page.bottomRight());
    outline.lineTo(page.bottomLeft());
    outline.closeSubpath();

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x9a, 0x9a, 0x9a), qMax(1.0, side / 48.0)));
    painter.setBrush(QColor(0xfa, 0xfa, 0xfa));
    painter.drawPath(outline);
    painter.setBrush(QColor(0xdd, 0xdd, 0xdd));
    QPolygonF corner;
    corner << QPointF(page.right() - fold, page.top()) << QPointF(page.right() - fold, page.top() + fold)
           << QPointF(page.right(), page.top() + fold);
    painter.drawPolygon(corner);
    return image;
}

} // namespace Vantrope
