// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationRequestHandler.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace Vantrope {

// One watched folder as the command line shows it.
struct WatchedFolderSummary {
    QString identifier;
    QString path;
    // "active", "paused", "missing", "unreadable" or "restricted".
    QString status;
};

// The watched folders of a running Vantrope, for its command line.
class WatchedFolderRequestHandler {
public:
    using Error = ApplicationRequestHandler::Error;

    virtual ~WatchedFolderRequestHandler() = default;

    virtual QList<WatchedFolderSummary> watchedFolders() const = 0;
    // Watches the folder, given as the file system spells its absolute path, from now on.
    virtual std::expected<WatchedFolderSummary, Error> addWatchedFolder(const QByteArray& path) = 0;
    virtual std::expected<WatchedFolderSummary, Error> removeWatchedFolder(const QString& identifier) = 0;
    virtual std::expected<WatchedFolderSummary, Error> pauseWatchedFolder(const QString& identifier) = 0;
    virtual std::expected<WatchedFolderSummary, Error> resumeWatchedFolder(const QString& identifier) = 0;
};

} // namespace Vantrope
