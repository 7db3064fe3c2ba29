// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableWebImage.h"

#include "DraggableFile.h"
#include "DraggableLogging.h"
#include "DraggableStorage.h"
#include "DraggableValues.h"
#include "Libraries/Core/AtomicFileWriter.h"
#include "Libraries/Core/FileImages.h"
#include "Libraries/Core/URL.h"
#include "Models/Pasteboard/PasteboardTypes.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPainter>
#include <QUrl>
#include <QUuid>

namespace Vantrope {

namespace {

// JPEG keeps no transparency; without this, clear pixels would come out black.
QImage flattened(const QImage& image)
{
    if (!image.hasAlphaChannel()) {
        return image;
    }
    QImage opaque(image.size(), QImage::Format_RGB32);
    opaque.setDevicePixelRatio(image.devicePixelRatio());
    opaque.fill(Qt::white);
    QPainter painter(&opaque);
    painter.drawImage(0, 0, image);
    painter.end();
    return opaque;
}

// Formats kept as the page had them; anything else becomes a JPEG.
const QList<QByteArray> keptFormats{"png", "jpeg", "gif", "webp"};

// The picture's own file name as the browser offers it; empty when there is none.
QString offeredFileName(const PasteboardItem& item)
{
    QString name;
    if (const auto data = item.data(PasteboardTypes::mozillaFilePromiseDestinationName)) {
        name = DraggableValues::decodeText(*data).value_or(QString()).section(QLatin1Char('\n'), 0, 0);
    }
    for (const QString& type : {PasteboardTypes::mozillaFilePromiseURL, PasteboardTypes::mozillaURL}) {
        if (!name.isEmpty()) {
            break;
        }
        if (const auto data = item.data(type)) {
            const QUrl url(
                DraggableValues::decodeText(*data).value_or(QString()).section(QLatin1Char('\n'), 0, 0));
            // A data: or blob: address names no file; its path would make a name of garbage.
            static const QStringList named{QStringLiteral("http"), QStringLiteral("https"),
                                           QStringLiteral("ftp"), QStringLiteral("file")};
            if (named.contains(url.scheme())) {
                name = url.fileName();
            }
        }
    }
    name = QFileInfo(name.trimmed()).fileName();
    // Nothing that leaves the folder, hides the file or garbles a listing.
    name.removeIf([](QChar c) {
        return c == QLatin1Char('/') || c == QLatin1Char('\\') || c.category() == QChar::Other_Control;
    });
    while (name.startsWith(QLatin1Char('.'))) {
        name.remove(0, 1);
    }
    return name;
}

// A browser offers one picture in several encodings; the one its file name names is the page's own, the
// others are made from it.
QString ownType(const PasteboardItem& item, const QString& offered)
{
    const QString suffix = QFileInfo(offeredFileName(item)).suffix();
    if (suffix.isEmpty()) {
        return offered;
    }
    const QString named =
        QMimeDatabase().mimeTypeForFile(QStringLiteral("x.") + suffix, QMimeDatabase::MatchExtension).name();
    return item.hasType(named) ? named : offered;
}

} // namespace

QStringList DraggableWebImage::readableTypes()
{
    QStringList types{PasteboardTypes::png, PasteboardTypes::jpeg};
    for (const QByteArray& mime : QImageReader::supportedMimeTypes()) {
        const QString type = QString::fromLatin1(mime);
        if (!types.contains(type)) {
            types.append(type);
        }
    }
    return types;
}

std::shared_ptr<DraggableWebImage> DraggableWebImage::fromPasteboard(const PasteboardItem& item,
                                                                     const QString& offeredType,
                                                                     const DraggableContext&)
{
    const std::optional<QByteArray> data = item.data(ownType(item, offeredType));
    if (!data) {
        qCWarning(lcDraggable) << "Initialized object is not data";
        return nullptr;
    }
    const QImage image = QImage::fromData(*data);
    if (image.isNull()) {
        qCWarning(lcDraggable) << "Failed to obtain image representation from data";
        return nullptr;
    }
    QBuffer original(const_cast<QByteArray*>(&*data));
    original.open(QIODevice::ReadOnly);
    const QByteArray format = QImageReader(&original).format();
    if (keptFormats.contains(format)) {
        // The page's own bytes under the page's own name, in a folder of their own so names never meet.
        // The extension comes from the bytes, not from the name.
        const QString name = QFileInfo(offeredFileName(item)).completeBaseName().left(100).trimmed();
        const std::optional<QString> folder = DraggableStorage::filePath(
            ReservedTemporaryDirectory::promises, QUuid::createUuid().toString(QUuid::WithoutBraces));
        if (!folder || !QDir().mkpath(*folder)) {
            qCWarning(lcDraggable) << "Failed to save image to disk with error no temporary folder";
            return nullptr;
        }
        const QString path = *folder + QLatin1Char('/') + (name.isEmpty() ? QStringLiteral("Image") : name) +
                             QLatin1Char('.') + QString::fromLatin1(format == "jpeg" ? "jpg" : format);
        if (const auto written = AtomicFileWriter::write(path, *data); !written) {
            qCWarning(lcDraggable).noquote()
                << "Failed to save image to disk with error" << written.error().description();
            return nullptr;
        }
        return std::make_shared<DraggableWebImage>(Tag{}, QUrl::fromLocalFile(path));
    }
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    if (!flattened(image).save(&buffer, "JPEG")) {
        qCWarning(lcDraggable) << "Failed to convert to JPG";
        return nullptr;
    }
    const std::optional<QString> path = DraggableStorage::filePath(
        ReservedTemporaryDirectory::promises,
        QUuid::createUuid().toString(QUuid::WithoutBraces) + QStringLiteral(".jpg"));
    if (!path) {
        qCWarning(lcDraggable) << "Failed to save compressed image to disk with error no temporary folder";
        return nullptr;
    }
    if (const auto written = AtomicFileWriter::write(*path, jpeg); !written) {
        qCWarning(lcDraggable).noquote()
            << QStringLiteral("Failed to save compressed image to disk with error ") +
                   written.error().description();
        return nullptr;
    }
    return std::make_shared<DraggableWebImage>(Tag{}, QUrl::fromLocalFile(*path));
}

DraggableWebImage::DraggableWebImage(Tag, const QUrl& url)
    : m_url(url)
    , m_cacheKey(DraggableFile::standardizedKey(url))
    , m_systemFileNumber(URL::systemFileNumber(url))
{}

QImage DraggableWebImage::image(bool iconOnly, const QSize& size) const
{
    const QString path = m_url.toLocalFile();
    return iconOnly ? FileImages::iconImage(path, size) : FileImages::previewImage(path, size);
}

void DraggableWebImage::resolveUrl(ResolveCompletion completion)
{
    resolveOnMain(std::move(completion), m_url);
}

PasteboardItem DraggableWebImage::pasteboardItem() const
{
    PasteboardItem item;
    item.setData(PasteboardTypes::uriList, m_url.toEncoded());
    return item;
}

QString DraggableWebImage::description() const
{
    return QStringLiteral("<DraggableWebImage: 0x%1, file: %2>")
        .arg(quintptr(this), 0, 16)
        .arg(QFileInfo(m_url.toLocalFile()).fileName());
}

} // namespace Vantrope
