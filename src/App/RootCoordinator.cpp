// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RootCoordinator.h"

#include "AppLogging.h"
#include "DisplayEnvironment.h"
#include "Domains/Actions/DesktopActions.h"
#include "Domains/Activation/DragMonitor.h"
#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/DragRecognizerConfiguration.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "DragMonitorFactory.h"
#include "MenuItemController.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Preferences/Preferences.h"
#include "Version.h"
#include "WindowCoordinator.h"

#include <QClipboard>
#include <QGuiApplication>

namespace Vantrope {

RootCoordinator::RootCoordinator(const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
{
    // The screenshot observer and its bookmark store come first once screenshots land.
    m_windowCoordinator = std::make_unique<WindowCoordinator>(dependencies.preferences);
    DesktopActions* desktopActions = dependencies.desktopActions;
    if (!desktopActions) {
        m_desktopActions = std::make_unique<LinuxDesktopActions>();
        desktopActions = m_desktopActions.get();
    }
    WindowCoordinator* windows = m_windowCoordinator.get();
    m_sessionController = std::make_unique<SessionController>(SessionController::Dependencies{
        dependencies.sessionStore, dependencies.preferences, dependencies.shelfInterface,
        dependencies.screens, dependencies.messages, dependencies.clipboard, dependencies.clock,
        dependencies.fileWatcher, desktopActions,
        [](const QString& text) { QGuiApplication::clipboard()->setText(text); },
        [windows] { windows->showSettings(); }});
    m_menuItemController =
        std::make_unique<MenuItemController>(*m_sessionController, dependencies.sessionStore);
    // Watched folders and the temporary data sanitizer take their place here when they land.

    start();
    performFirstRunStep();
    // Items left by a share extension: on Linux other programs hand files over the session bus instead.
    // The watched-folder observers start here once they land.
    dependencies.preferences.setValue(PreferenceKeys::hasLaunchedApp, true);
}

RootCoordinator::~RootCoordinator() = default;

void RootCoordinator::start()
{
    // The desktop's taskbar lists the program's windows by itself; nothing here switches it, so the
    // show-in-taskbar preference only changes the termination rule.
    // The shake and the trigger modifier: on Wayland or without the X extensions the monitor is a null
    // one that says so in the log.
    m_dragMonitor = DragMonitorFactory::create(DisplayEnvironment::detect());
    m_dragRecognizer = std::make_unique<DragRecognizer>(*m_dragMonitor, m_dependencies.clock);
    m_recognizerConfiguration =
        std::make_unique<DragRecognizerConfiguration>(m_dependencies.preferences, *m_dragRecognizer);
    m_dragRecognizer->setDelegate(m_sessionController.get());
    // Edge docking, screenshots and hot keys are configured here when they land.
    connect(m_sessionController.get(), &SessionController::sessionsChanged, this,
            &RootCoordinator::sessionControllerDidChangeSessions);
    connect(m_menuItemController.get(), &MenuItemController::settingsRequested, m_windowCoordinator.get(),
            &WindowCoordinator::showSettings);
    connect(m_menuItemController.get(), &MenuItemController::quitRequested, this,
            &RootCoordinator::terminationRequested);
    connect(m_windowCoordinator.get(), &WindowCoordinator::quitRequested, this,
            &RootCoordinator::terminationRequested);
    connect(&m_dependencies.sessionStore, &PersistentDragSessionStore::sessionsChanged,
            m_menuItemController.get(), &MenuItemController::reload);
    m_menuItemController->showStatusItem();
}

void RootCoordinator::performFirstRunStep()
{
    Preferences& preferences = m_dependencies.preferences;
    if (preferences.value(PreferenceKeys::hasLaunchedApp)) {
        // The what's-new page is compared against `LastSeenWhatsNewVersion` here once it exists.
        return;
    }
    qCInfo(lcApp) << "First start: showing the introduction";
    m_windowCoordinator->showIntroduction(m_dependencies.screens.screenUnderMouse());
    preferences.setValue(PreferenceKeys::lastSeenWhatsNewVersion, QStringLiteral(VANTROPE_VERSION));
}

void RootCoordinator::sessionControllerDidChangeSessions()
{
    const qsizetype count = m_sessionController->coordinators().size();
    if (count > m_shelfCount) {
        m_windowCoordinator->orderOutPageWindows();
    }
    m_shelfCount = count;
    m_menuItemController->reload();
}

} // namespace Vantrope
