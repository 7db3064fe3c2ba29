// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileOperationType.h"

#include "Libraries/Core/Localized.h"

#include <algorithm>
#include <QMimeDatabase>

namespace Vantrope {

namespace {

constexpr FileOperationType::Value allValues[] = {
    FileOperationType::imageResize,
    FileOperationType::imageConvert,
    FileOperationType::imageCompress,
    FileOperationType::imageRemoveMetadata,
    FileOperationType::imageStitch,
    FileOperationType::imageTextRecognition,
    FileOperationType::imagesToPdf,
    FileOperationType::setWallpaper,
    FileOperationType::copyTextContent,
    FileOperationType::getInfo,
    FileOperationType::rename,
    FileOperationType::batchRename,
    FileOperationType::zip,
    FileOperationType::copyPath,
    FileOperationType::copyTo,
    FileOperationType::moveTo,
    FileOperationType::moveToTrash,
};

bool inherits(const QString& mimeType, const QString& parent)
{
    if (mimeType == parent) {
        return true;
    }
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForName(mimeType);
    return type.isValid() && type.inherits(parent);
}

bool isImage(const QString& mimeType)
{
    return mimeType.startsWith(QLatin1String("image/"));
}

} // namespace

QList<FileOperationType> FileOperationType::all()
{
    QList<FileOperationType> types;
    for (const Value value : allValues) {
        types.append(value);
    }
    return types;
}

std::optional<FileOperationType> FileOperationType::fromRawValue(int rawValue)
{
    for (const Value value : allValues) {
        if (int(value) == rawValue) {
            return FileOperationType(value);
        }
    }
    return std::nullopt;
}

std::optional<FileOperationType> FileOperationType::fromIdentifier(const QString& identifier)
{
    for (const Value value : allValues) {
        if (FileOperationType(value).identifier() == identifier) {
            return FileOperationType(value);
        }
    }
    return std::nullopt;
}

QString FileOperationType::identifier() const
{
    switch (m_value) {
    case imageResize:
        return QStringLiteral("operationImageResize");
    case imageConvert:
        return QStringLiteral("operationImageConvert");
    case imageCompress:
        return QStringLiteral("operationImageCompress");
    case imageRemoveMetadata:
        return QStringLiteral("operationImageRemoveMetadata");
    case imageStitch:
        return QStringLiteral("operationImageStitch");
    case imageTextRecognition:
        return QStringLiteral("operationImageTextRecognition");
    case imagesToPdf:
        return QStringLiteral("operationImageToPdf");
    case setWallpaper:
        return QStringLiteral("operationSetWallpaper");
    case copyTextContent:
        return QStringLiteral("operationTextCopyContent");
    case getInfo:
        return QStringLiteral("operationGetInfo");
    case rename:
        return QStringLiteral("operationRename");
    case batchRename:
        return QStringLiteral("operationBatchRename");
    case zip:
        return QStringLiteral("operationZip");
    case copyPath:
        return QStringLiteral("operationCopyPath");
    case copyTo:
        return QStringLiteral("operationCopyTo");
    case moveTo:
        return QStringLiteral("operationMoveTo");
    case moveToTrash:
        return QStringLiteral("operationRecycle");
    }
    return {};
}

QString FileOperationType::title() const
{
    switch (m_value) {
    case imageResize:
        return Localized("file-operation.image-resize.title", "Resize Images");
    case imageConvert:
        return Localized("file-operation.image-convert.title", "Convert Images");
    case imageCompress:
        return Localized("file-operation.image-compress.title", "Compress Images");
    case imageRemoveMetadata:
        return Localized("file-operation.image-remove-metadata.title", "Remove Metadata");
    case imageStitch:
        return Localized("file-operation.image-stitch.title", "Stitch Images");
    case imageTextRecognition:
        return Localized("file-operation.image-text-recognition.title", "Recognize Text");
    case imagesToPdf:
        return Localized("file-operation.images-to-pdf.title", "Make PDF");
    case setWallpaper:
        return Localized("file-operation.set-wallpaper.title", "Set as Wallpaper");
    case copyTextContent:
        return Localized("file-operation.copy-text-content.title", "Copy Text Content");
    case getInfo:
        return Localized("file-operation.get-info.title", "Get Info");
    case rename:
        return Localized("file-operation.rename.title", "Rename");
    case batchRename:
        return Localized("file-operation.batch-rename.title", "Rename Items");
    case zip:
        return Localized("file-operation.zip.title", "Zip");
    case copyPath:
        return Localized("file-operation.copy-path.title", "Copy Path");
    case copyTo:
        return Localized("file-operation.copy-to.title", "Copy To");
    case moveTo:
        return Localized("file-operation.move-to.title", "Move To");
    case moveToTrash:
        return Localized("file-operation.move-to-trash.title", "Move to Trash");
    }
    return {};
}

QString FileOperationType::iconName() const
{
    switch (m_value) {
    case imageResize:
        return QStringLiteral("transform-scale");
    case imageConvert:
        return QStringLiteral("image-x-generic");
    case imageCompress:
        return QStringLiteral("document-save-as");
    case imageRemoveMetadata:
        return QStringLiteral("edit-clear");
    case imageStitch:
        return QStringLiteral("object-columns");
    case imageTextRecognition:
        return QStringLiteral("format-text-direction-ltr");
    case imagesToPdf:
        return QStringLiteral("application-pdf");
    case setWallpaper:
        return QStringLiteral("preferences-desktop-wallpaper");
    case copyTextContent:
        return QStringLiteral("edit-copy");
    case getInfo:
        return QStringLiteral("document-properties");
    case rename:
    case batchRename:
        return QStringLiteral("edit-rename");
    case zip:
        return QStringLiteral("package-x-generic");
    case copyPath:
        return QStringLiteral("edit-copy");
    case copyTo:
        return QStringLiteral("edit-copy");
    case moveTo:
        return QStringLiteral("go-jump");
    case moveToTrash:
        return QStringLiteral("user-trash");
    }
    return {};
}

QStringList FileOperationType::keywords() const
{
    switch (m_value) {
    case imageTextRecognition:
        return {QStringLiteral("ocr")};
    case setWallpaper:
        return {QStringLiteral("Wallpaper")};
    case imageResize:
        return {Localized("shelf-search.keywords.image", "image")};
    case imageConvert:
        return {Localized("shelf-search.keywords.format", "format")};
    case imageCompress:
        return {Localized("shelf-search.keywords.quality", "quality")};
    case imageRemoveMetadata:
        return {QStringLiteral("exif")};
    case imageStitch:
        return {Localized("shelf-search.keywords.merge", "merge")};
    case rename:
    case batchRename:
        return {Localized("shelf-search.keywords.filename", "filename")};
    case zip:
        return {Localized("shelf-search.keywords.archive", "archive")};
    case copyPath:
        return {Localized("shelf-search.keywords.file", "file"), QStringLiteral("terminal")};
    case copyTo:
    case moveTo:
        return {QStringLiteral("finder"), Localized("shelf-search.keywords.location", "location"),
                Localized("shelf-search.keywords.destination", "destination")};
    case moveToTrash:
        return {Localized("shelf-search.keywords.delete", "delete"),
                Localized("shelf-search.keywords.remove", "remove"),
                Localized("shelf-search.keywords.trash", "trash")};
    case imagesToPdf:
    case copyTextContent:
    case getInfo:
        return {};
    }
    return {};
}

bool FileOperationType::canPerform(const QStringList& mimeTypes) const
{
    if (mimeTypes.isEmpty()) {
        return false;
    }
    const auto allOf = [&mimeTypes](auto predicate) {
        return std::all_of(mimeTypes.cbegin(), mimeTypes.cend(), predicate);
    };
    switch (m_value) {
    case imageResize:
    case imageConvert:
    case imageCompress:
    case imageRemoveMetadata:
    case imageTextRecognition:
    case imagesToPdf:
        return allOf(isImage);
    case imageStitch:
        return mimeTypes.size() >= 2 && allOf(isImage);
    case setWallpaper:
        return mimeTypes.size() == 1 && isImage(mimeTypes.first());
    case copyTextContent:
        return allOf([](const QString& type) { return inherits(type, QStringLiteral("text/plain")); });
    case getInfo:
    case rename:
        return mimeTypes.size() == 1;
    case batchRename:
        return mimeTypes.size() >= 2;
    case zip:
    case copyPath:
    case copyTo:
    case moveTo:
    case moveToTrash:
        return true;
    }
    return false;
}

bool FileOperationType::isImageOperation() const
{
    return m_value >= imageResize && m_value <= imagesToPdf;
}

} // namespace Vantrope
