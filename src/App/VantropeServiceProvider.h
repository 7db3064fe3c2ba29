// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Platform/DBus/ApplicationRequestHandler.h"

#include <memory>

namespace Vantrope {

class AppDelegate;
class DragSessionCoordinator;
class RootCoordinator;

// Answers other programs and the command line once the program has launched.
class VantropeServiceProvider final : public ApplicationRequestHandler {
public:
    VantropeServiceProvider(AppDelegate& appDelegate, RootCoordinator& coordinator);

    void activate() override;
    std::expected<QString, Error> addFiles(const QList<QByteArray>& paths) override;
    QString newShelf() override;
    std::expected<QString, Error> openRecent(const QString& identifier) override;
    void closeAll(std::function<void()> done) override;
    void quit() override;
    QList<ShelfSummary> shelves() const override;
    void
    shelfActions(const QString& shelf,
                 std::function<void(const std::expected<QList<ShelfActionSummary>, Error>&)> done) override;
    void runAction(const QString& shelf, const QString& action, const QVariantMap& settings,
                   std::function<void(const std::expected<QString, Error>&)> done) override;
    std::expected<QStringList, Error> removeItems(const QString& shelf, const QStringList& items) override;
    std::expected<QString, Error> changeLabel(const QString& shelf, const LabelChange& change) override;
    WatchedFolderRequestHandler* watchedFolders() override;
    SettingsRequestHandler* settings() override;

private:
    std::expected<std::shared_ptr<DragSessionCoordinator>, Error> shelfFor(const QString& identifier) const;

    AppDelegate& m_appDelegate;
    RootCoordinator& m_coordinator;
};

} // namespace Vantrope
