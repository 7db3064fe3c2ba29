// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FilesSnapshotController.h"

#include "AtomicFileWriter.h"
#include "Logging.h"
#include "URL.h"

#include <QBuffer>
#include <QDir>
#include <QFile>

namespace Vantrope {

namespace {

const QString suffix = QStringLiteral(".png");

// Percent-encoded so that no identifier can name a path outside the folder.
QString fileName(const QString& identifier)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(identifier)) + suffix;
}

} // namespace

QString FilesSnapshotController::Error::description() const
{
    switch (kind) {
    case Kind::noStorage:
        return QStringLiteral("There is no folder to keep snapshots in");
    case Kind::generationFailed:
        return QStringLiteral("Could not compose the snapshot: %1").arg(reason);
    case Kind::writeFailed:
        return QStringLiteral("Could not store the snapshot: %1").arg(reason);
    }
    return reason;
}

FilesSnapshotController::FilesSnapshotController(const FilesSnapshotNamespace& nameSpace)
    : FilesSnapshotController(nameSpace, Configuration())
{}

FilesSnapshotController::FilesSnapshotController(const FilesSnapshotNamespace& nameSpace,
                                                 Configuration configuration)
    : m_configuration(std::move(configuration))
{
    if (const std::optional<QString> container = URL::groupContainer()) {
        m_directory = *container + QStringLiteral("/Snapshots/") +
                      QString::fromLatin1(QUrl::toPercentEncoding(nameSpace.name()));
    }
}

QString FilesSnapshotController::snapshotPath(const QString& identifier) const
{
    return m_directory.isEmpty() ? QString() : m_directory + QLatin1Char('/') + fileName(identifier);
}

std::expected<QString, FilesSnapshotController::Error>
FilesSnapshotController::generateSnapshot(const QString& identifier, const QList<QUrl>& source) const
{
    const QString path = snapshotPath(identifier);
    if (path.isEmpty()) {
        return std::unexpected(Error{Error::Kind::noStorage, {}});
    }
    const FilesSnapshotGenerator generator(source, m_configuration.size, m_configuration.numberOfFiles,
                                           m_configuration.imageProvider);
    const std::expected<QImage, FilesSnapshotGenerator::Error> image = generator.generate();
    if (!image) {
        return std::unexpected(Error{Error::Kind::generationFailed, image.error().description()});
    }
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!image->save(&buffer, "PNG")) {
        return std::unexpected(Error{Error::Kind::writeFailed, QStringLiteral("PNG encoding failed")});
    }
    if (const auto written = AtomicFileWriter::write(path, png); !written) {
        return std::unexpected(Error{Error::Kind::writeFailed, written.error().description()});
    }
    return path;
}

std::optional<QImage> FilesSnapshotController::snapshot(const QString& identifier) const
{
    const QString path = snapshotPath(identifier);
    if (path.isEmpty() || !QFile::exists(path)) {
        return std::nullopt;
    }
    QImage image;
    if (!image.load(path, "PNG")) {
        qCWarning(lcCore).noquote() << "Could not read the snapshot" << path;
        return std::nullopt;
    }
    return image;
}

void FilesSnapshotController::purgeSnapshots(const PurgeStrategy& strategy) const
{
    if (m_directory.isEmpty()) {
        return;
    }
    if (const std::optional<QString>& identifier = strategy.onlyIdentifier()) {
        const QString path = snapshotPath(*identifier);
        if (QFile::exists(path) && !QFile::remove(path)) {
            qCWarning(lcCore).noquote() << "Could not remove the snapshot" << path;
        }
        return;
    }
    QDir directory(m_directory);
    const QStringList names = directory.entryList({QLatin1Char('*') + suffix}, QDir::Files);
    for (const QString& name : names) {
        if (!directory.remove(name)) {
            qCWarning(lcCore).noquote() << "Could not remove the snapshot" << directory.filePath(name);
        }
    }
}

} // namespace Vantrope
