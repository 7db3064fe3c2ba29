// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileInformation.h"

#include "Libraries/Core/Localized.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QImageReader>
#include <QLocale>
#include <QMimeDatabase>

namespace Vantrope {

namespace {

QString dateText(const QDateTime& date)
{
    return date.isValid() ? QLocale().toString(date, QLocale::LongFormat) : QString();
}

} // namespace

FileInformation FileInformation::describe(const QString& path, const MetadataReader& metadata)
{
    FileInformation information;
    const QFileInfo info(path);
    information.path = info.absoluteFilePath();
    information.name = info.fileName();
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(info);
    information.iconName = type.iconName();
    if (!info.exists()) {
        information.rows.append(
            {Localized("info.kind", "Kind"), Localized("info.missing", "No longer exists")});
        return information;
    }
    QString kind = type.comment();
    if (!kind.isEmpty()) {
        kind[0] = kind[0].toUpper();
    }
    information.rows.append({Localized("info.kind", "Kind"), kind});
    const QLocale locale;
    if (info.isDir()) {
        constexpr int limit = 100000;
        qint64 bytes = 0;
        int count = 0;
        QDirIterator entries(path, QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext() && count < limit) {
            entries.next();
            bytes += entries.fileInfo().size();
            ++count;
        }
        information.rows.append(
            {Localized("info.size", "Size"), Localized("info.folder-size", "%1 in %2 files%3")
                                                 .arg(locale.formattedDataSize(bytes), locale.toString(count),
                                                      count >= limit ? QStringLiteral("+") : QString())});
    } else {
        information.rows.append(
            {Localized("info.size", "Size"),
             Localized("info.file-size", "%1 (%2 bytes)")
                 .arg(locale.formattedDataSize(info.size()), locale.toString(info.size()))});
    }
    information.rows.append({Localized("info.where", "Where"), info.absolutePath()});
    if (const QString created = dateText(info.birthTime()); !created.isEmpty()) {
        information.rows.append({Localized("info.created", "Created"), created});
    }
    information.rows.append({Localized("info.modified", "Modified"), dateText(info.lastModified())});
    if (type.name().startsWith(QLatin1String("image/"))) {
        if (metadata) {
            // The metadata reader knows the dimensions as the picture is seen (turned by its orientation).
            information.metadata = metadata(path);
            return information;
        }
        QImageReader reader(path);
        reader.setAutoTransform(true);
        if (const QSize size = reader.size(); size.isValid()) {
            information.rows.append({Localized("info.dimensions", "Dimensions"),
                                     QStringLiteral("%1 × %2").arg(size.width()).arg(size.height())});
        }
    }
    return information;
}

} // namespace Vantrope
