// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ReservedTemporaryDirectory.h"

#include "Localized.h"
#include "Logging.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace Vantrope::TemporaryDirectories {

namespace {

std::optional<QString> privateFolder(const QString& path)
{
    QDir dir(path);
    if (!dir.exists()) {
        if (!dir.mkpath(QStringLiteral("."))) {
            qCWarning(lcCore) << "Could not create the folder" << path;
            return std::nullopt;
        }
        QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    return dir.absolutePath();
}

} // namespace

std::optional<QString> temporaryDirectory()
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (cache.isEmpty()) {
        return std::nullopt;
    }
    return privateFolder(cache + QStringLiteral("/vantrope"));
}

QString folderName(ReservedTemporaryDirectory directory)
{
    QString name;
    switch (directory) {
    case ReservedTemporaryDirectory::textFiles:
        name = Localized("directories.text.directory-name", "Text");
        break;
    case ReservedTemporaryDirectory::promises:
        name = Localized("directories.promises.directory-name", "Promises");
        break;
    case ReservedTemporaryDirectory::archives:
        name = Localized("directories.archives.directory-name", "Archives");
        break;
    case ReservedTemporaryDirectory::shortcuts:
        name = Localized("directories.shortcuts.directory-name", "Shortcuts");
        break;
    case ReservedTemporaryDirectory::logs:
        name = Localized("directories.logs.directory-name", "Logs");
        break;
    case ReservedTemporaryDirectory::operations:
        name = Localized("directories.operations.directory-name", "Operations");
        break;
    }
    // A translation must not be able to point outside the temporary directory.
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral("..")) {
        name = QStringLiteral("_");
    }
    return name;
}

std::optional<QString> path(ReservedTemporaryDirectory directory)
{
    const auto base = temporaryDirectory();
    if (!base) {
        return std::nullopt;
    }
    return privateFolder(*base + QLatin1Char('/') + folderName(directory));
}

} // namespace Vantrope::TemporaryDirectories
