// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FilesSnapshotGenerator.h"

#include "FileImages.h"

#include <QCoreApplication>
#include <QPainter>
#include <QThread>

namespace Vantrope {

namespace {

// Items behind the top one lean alternately left and right, a little more each.
qreal angle(int index)
{
    if (index == 0) {
        return 0;
    }
    const qreal step = 7.0 * ((index + 1) / 2);
    return index % 2 == 1 ? -step : step;
}

// Leaves room for the corners of the leaning items.
constexpr qreal itemScale = 0.78;

} // namespace

QString FilesSnapshotGenerator::Error::description() const
{
    switch (kind) {
    case Kind::noFiles:
        return QStringLiteral("No files to make a snapshot of");
    case Kind::noImages:
        return QStringLiteral("None of the files has a picture");
    case Kind::badSize:
        return QStringLiteral("The snapshot size is empty");
    }
    return {};
}

FilesSnapshotGenerator::FilesSnapshotGenerator(QList<QUrl> urls, const QSize& size, int maximumNumberOfFiles,
                                               ImageProvider imageProvider)
    : m_urls(std::move(urls))
    , m_size(size)
    , m_maximumNumberOfFiles(maximumNumberOfFiles)
    , m_imageProvider(imageProvider ? std::move(imageProvider) : ImageProvider(&defaultImage))
{}

QImage FilesSnapshotGenerator::defaultImage(const QUrl& file, const QSize& size)
{
    const QString path = file.toLocalFile();
    const QCoreApplication* application = QCoreApplication::instance();
    if (application && QThread::currentThread() == application->thread()) {
        return FileImages::previewImage(path, size);
    }
    const QImage thumbnail = FileImages::thumbnailImage(path, size);
    return thumbnail.isNull() ? FileImages::genericIconImage(size) : thumbnail;
}

std::expected<QImage, FilesSnapshotGenerator::Error> FilesSnapshotGenerator::generate() const
{
    if (m_size.isEmpty()) {
        return std::unexpected(Error{Error::Kind::badSize});
    }
    const QSize itemSize = (QSizeF(m_size) * itemScale).toSize();
    QList<QImage> images;
    bool sawFile = false;
    for (const QUrl& url : m_urls) {
        if (images.size() >= m_maximumNumberOfFiles) {
            break;
        }
        if (!url.isLocalFile()) {
            continue;
        }
        sawFile = true;
        QImage image = m_imageProvider(url, itemSize);
        if (image.isNull()) {
            continue;
        }
        if (image.width() > itemSize.width() || image.height() > itemSize.height()) {
            image = image.scaled(itemSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        }
        images.append(image);
    }
    if (!sawFile) {
        return std::unexpected(Error{Error::Kind::noFiles});
    }
    if (images.isEmpty()) {
        return std::unexpected(Error{Error::Kind::noImages});
    }

    QImage canvas(m_size, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QPointF centre(m_size.width() / 2.0, m_size.height() / 2.0);
    // Back to front, so the first file ends on top.
    for (qsizetype index = images.size() - 1; index >= 0; --index) {
        const QImage& image = images.at(index);
        painter.save();
        painter.translate(centre);
        painter.rotate(angle(int(index)));
        painter.drawImage(QPointF(-image.width() / 2.0, -image.height() / 2.0), image);
        painter.restore();
    }
    painter.end();
    return canvas;
}

} // namespace Vantrope
