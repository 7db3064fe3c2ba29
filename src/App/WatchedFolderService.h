// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Platform/DBus/WatchedFolderRequestHandler.h"

namespace Vantrope {

class WatchedFolderController;

// The watched folders as the command line reaches them over the session bus.
class WatchedFolderService final : public WatchedFolderRequestHandler {
public:
    explicit WatchedFolderService(WatchedFolderController& controller);

    QList<WatchedFolderSummary> watchedFolders() const override;
    std::expected<WatchedFolderSummary, Error> addWatchedFolder(const QByteArray& path) override;
    std::expected<WatchedFolderSummary, Error> removeWatchedFolder(const QString& identifier) override;
    std::expected<WatchedFolderSummary, Error> pauseWatchedFolder(const QString& identifier) override;
    std::expected<WatchedFolderSummary, Error> resumeWatchedFolder(const QString& identifier) override;

private:
    WatchedFolderController& m_controller;
};

} // namespace Vantrope
