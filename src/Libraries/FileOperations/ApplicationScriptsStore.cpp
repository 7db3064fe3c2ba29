// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationScriptsStore.h"

#include "FileOperationsLogging.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <unistd.h>

namespace Vantrope {

ApplicationScriptsStore::ApplicationScriptsStore(QString directory)
    : m_directory(directory.isEmpty() ? safeApplicationScriptsDirectory() : std::move(directory))
{}

QString ApplicationScriptsStore::safeApplicationScriptsDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/vantrope/scripts");
}

QList<ApplicationScript> ApplicationScriptsStore::scripts() const
{
    QList<ApplicationScript> scripts;
    const QFileInfo folder(m_directory);
    if (!folder.isDir()) {
        return scripts;
    }
    const uint user = ::getuid();
    const auto writableByOthers = [](const QFileInfo& info) {
        return info.permissions() & (QFile::WriteGroup | QFile::WriteOther);
    };
    if (folder.ownerId() != user || writableByOthers(folder)) {
        qCWarning(lcFileOperations) << "The scripts folder may be changed by others; no script is offered";
        return scripts;
    }
    const QFileInfoList entries =
        QDir(m_directory).entryInfoList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        // A link could lead anywhere; only files that live here and are the user's own run.
        if (entry.isSymLink() || !entry.isExecutable() || entry.ownerId() != user ||
            writableByOthers(entry)) {
            continue;
        }
        scripts.append(ApplicationScript::forPath(entry.absoluteFilePath()));
    }
    return scripts;
}

} // namespace Vantrope
