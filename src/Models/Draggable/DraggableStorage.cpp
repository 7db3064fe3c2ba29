// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableStorage.h"

#include "DraggableLogging.h"
#include "Libraries/Core/AtomicFileWriter.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Vantrope::DraggableStorage {

std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName)
{
    const std::optional<QString> folder = TemporaryDirectories::path(directory);
    if (!folder) {
        qCWarning(lcDraggable) << "No temporary folder" << TemporaryDirectories::folderName(directory);
        return std::nullopt;
    }
    return *folder + QLatin1Char('/') + fileName;
}

std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName,
                                const QByteArray& content)
{
    // Sixteen hex digits: a chance collision among a person's items is out of reach.
    const QString key =
        QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex().left(16));
    const std::optional<QString> folder = filePath(directory, key);
    if (!folder) {
        return std::nullopt;
    }
    if (!QDir().mkpath(*folder)) {
        qCWarning(lcDraggable) << "Could not make the folder" << *folder;
        return std::nullopt;
    }
    QFile::setPermissions(*folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return *folder + QLatin1Char('/') + fileName;
}

std::expected<void, QString> overwrite(const QString& path, const QByteArray& data)
{
    if (!QFileInfo::exists(path)) {
        // Nobody follows a file that is not there yet: it appears whole, never empty or half written.
        if (const auto written = AtomicFileWriter::write(path, data); !written) {
            return std::unexpected(written.error().reason);
        }
        return {};
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return std::unexpected(file.errorString());
    }
    if (file.write(data) != data.size() || !file.flush()) {
        return std::unexpected(file.errorString());
    }
    file.close();
    if (file.error() != QFileDevice::NoError) {
        return std::unexpected(file.errorString());
    }
    return {};
}

} // namespace Vantrope::DraggableStorage
