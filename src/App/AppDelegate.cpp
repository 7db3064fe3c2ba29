// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AppDelegate.h"

#include "AppLogging.h"
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "Domains/DragSession/DragSessionWindow.h"
#include "Domains/SessionController/SessionController.h"
#include "Launcher.h"
#include "Libraries/Core/Logging.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "MenuItemController.h"
#include "Migrator.h"
#include "Platform/DBus/ApplicationRequestHandler.h"
#include "Preferences/Preferences.h"
#include "RootCoordinator.h"
#include "VantropeServiceProvider.h"
#include "WindowCoordinator.h"

namespace Vantrope {

AppDelegate::AppDelegate(const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
{
    applyFileLogging();
    connect(&m_dependencies.preferences, &Preferences::changed, this, [this](PreferenceKey key) {
        if (key == PreferenceKey::fileLoggingEnabled) {
            applyFileLogging();
        } else if (key == PreferenceKey::launchAtLogin && m_rootCoordinator) {
            applyLaunchAtLogin();
        }
    });
}

AppDelegate::~AppDelegate()
{
    // The store outlives this object and writes what is queued before it goes.
    if (m_rootCoordinator) {
        m_rootCoordinator->sessionController().saveOpenSessions();
    }
    if (m_serviceProvider && m_dependencies.publishRequestHandler) {
        m_dependencies.publishRequestHandler(nullptr);
    }
}

void AppDelegate::applyFileLogging()
{
    const bool enabled = m_dependencies.preferences.value(PreferenceKeys::fileLoggingEnabled);
    const auto folder = enabled ? TemporaryDirectories::path(ReservedTemporaryDirectory::logs) : std::nullopt;
    Logging::setFileLoggingDirectory(folder.value_or(QString()));
}

void AppDelegate::applicationDidFinishLaunching()
{
    qCInfo(lcApp) << "Application did finish launching";
    // The Dropbox client is set up here once the Dropbox actions land.
    m_dependencies.preferences.registerDefaults();
    // Linux has no older login-item mechanism to migrate from. The "instant-actions" item store and its
    // migration come with the instant actions.
    {
        // Read again by the root coordinator once migrated.
        ObservedDirectoryStore observedDirectories(QString(), false);
        Migrator::performWatchedFoldersFilterMigration(observedDirectories);
    }

    m_rootCoordinator = std::make_unique<RootCoordinator>(RootCoordinator::Dependencies{
        m_dependencies.preferences, m_dependencies.sessionStore, m_dependencies.shelfInterface,
        m_dependencies.screens, m_dependencies.clipboard, m_dependencies.messages, m_dependencies.clock,
        m_dependencies.fileWatcher});
    connect(m_rootCoordinator.get(), &RootCoordinator::terminationRequested, this,
            &AppDelegate::requestTermination);

    performPendingActions();
    applyLaunchAtLogin();

    m_serviceProvider = std::make_unique<VantropeServiceProvider>(*this, *m_rootCoordinator);
    if (m_dependencies.publishRequestHandler) {
        m_dependencies.publishRequestHandler(m_serviceProvider.get());
    }
    // Other programs read the open shelves over the session bus, so no list is written to a file.
    m_launchDate = m_dependencies.clock.now();
}

void AppDelegate::openFiles(const QList<QUrl>& urls)
{
    m_pendingActions.append({PendingAction::ShowDragSession{urls}});
    performPendingActions();
}

void AppDelegate::performPendingActions()
{
    if (m_pendingActions.isEmpty()) {
        return;
    }
    if (!m_rootCoordinator) {
        qCInfo(lcApp) << "Attempted to perform pending actions but we are not launched yet";
        return;
    }
    qCInfo(lcApp).noquote() << "Performing pending actions:" << m_pendingActions.size();
    const QList<PendingAction> actions = std::exchange(m_pendingActions, {});
    for (const PendingAction& action : actions) {
        const auto& show = std::get<PendingAction::ShowDragSession>(action.value);
        m_rootCoordinator->sessionController().openFiles(show.urls);
    }
}

void AppDelegate::applyLaunchAtLogin()
{
    const Launcher& launcher = m_dependencies.launcher;
    const bool enabled = m_dependencies.preferences.value(PreferenceKeys::launchAtLogin);
    const auto result = enabled ? launcher.enableLaunchAtLogin() : launcher.disableLaunchAtLogin();
    if (!result) {
        qCWarning(lcApp).noquote() << "Could not change launch at login:" << result.error().reason;
    }
}

void AppDelegate::handleReopen()
{
    // There are no remote feature flags on Linux, so reopening is always on.
    if (!m_rootCoordinator || !m_launchDate) {
        qCInfo(lcApp) << "We haven't launched yet. Ignoring.";
        return;
    }
    if (m_dependencies.clock.now() - *m_launchDate < reopenGracePeriod) {
        qCInfo(lcApp) << "Probably triggered during launch. Ignoring";
        return;
    }
    for (const auto& coordinator : m_rootCoordinator->sessionController().coordinators()) {
        if (!coordinator->isStopping()) {
            qCInfo(lcApp) << "We have a coordinator, showing it's window now";
            coordinator->window().showAndActivate();
            return;
        }
    }
    qCInfo(lcApp) << "No coordinator found, opening settings instead.";
    m_rootCoordinator->windowCoordinator().showSettings();
}

bool AppDelegate::applicationShouldTerminate() const
{
    if (!m_rootCoordinator) {
        return true;
    }
    if (!m_dependencies.preferences.value(PreferenceKeys::prefersShowInTaskbar)) {
        // Without a taskbar presence only the tray menu may end the program; a stray shortcut may not.
        const MenuItemController& menu = m_rootCoordinator->menuItemController();
        return menu.isOpen() || menu.lastSelectedItem() == MenuItemController::Item::quit;
    }
    for (const auto& coordinator : m_rootCoordinator->sessionController().coordinators()) {
        if (!coordinator->isStopping() && coordinator->window().containsMouse()) {
            return false;
        }
    }
    return true;
}

void AppDelegate::requestTermination()
{
    if (!applicationShouldTerminate()) {
        qCInfo(lcApp)
            << "Not quitting: the request did not come from the tray menu, or the pointer is over a shelf";
        return;
    }
    terminate();
}

void AppDelegate::terminate()
{
    qCInfo(lcApp) << "Quitting";
    Q_EMIT quitRequested();
}

} // namespace Vantrope
