// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "FilesSnapshotGenerator.h"
#include "FilesSnapshotNamespace.h"

#include <expected>
#include <optional>
#include <QImage>
#include <QList>
#include <QSize>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Keeps one composed picture of some files per identifier, as a PNG under
// "<application data>/Snapshots/<namespace>/". Calls may come from any thread; files are replaced
// atomically, so a reader never sees half a picture.
class FilesSnapshotController final {
public:
    struct Configuration {
        int numberOfFiles = 3;
        QSize size{180, 180};
        // Empty for FilesSnapshotGenerator::defaultImage.
        FilesSnapshotGenerator::ImageProvider imageProvider;
    };

    struct Error {
        enum class Kind { noStorage, generationFailed, writeFailed };
        Kind kind = Kind::noStorage;
        QString reason;
        QString description() const;
    };

    class PurgeStrategy final {
    public:
        static PurgeStrategy all() { return PurgeStrategy({}); }
        static PurgeStrategy identifier(const QString& identifier) { return PurgeStrategy(identifier); }
        const std::optional<QString>& onlyIdentifier() const { return m_identifier; }

    private:
        explicit PurgeStrategy(std::optional<QString> identifier)
            : m_identifier(std::move(identifier))
        {}
        std::optional<QString> m_identifier;
    };

    explicit FilesSnapshotController(
        const FilesSnapshotNamespace& nameSpace = FilesSnapshotNamespace::defaultNamespace());
    FilesSnapshotController(const FilesSnapshotNamespace& nameSpace, Configuration configuration);

    // Composes the first files of `source` and stores the picture under `identifier`, replacing an
    // older one. Returns the file written.
    std::expected<QString, Error> generateSnapshot(const QString& identifier,
                                                   const QList<QUrl>& source) const;
    std::optional<QImage> snapshot(const QString& identifier) const;
    void purgeSnapshots(const PurgeStrategy& strategy) const;

    // Empty when there is no application folder.
    QString directory() const { return m_directory; }
    QString snapshotPath(const QString& identifier) const;
    const Configuration& configuration() const { return m_configuration; }

private:
    QString m_directory;
    Configuration m_configuration;
};

} // namespace Vantrope
