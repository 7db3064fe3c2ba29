// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"

#include <memory>
#include <QObject>

namespace Vantrope {

class DesktopActions;
class DragSessionUserInterface;
class FileWatcher;
class MenuItemController;
class MessageWindowCenter;
class PasteboardSource;
class PersistentDragSessionStore;
class DragMonitor;
class DragRecognizer;
class DragRecognizerConfiguration;
class Preferences;
class ScreenEnvironment;
class SessionController;
class WindowCoordinator;

// Composes the running program once launching is done and keeps it for the life of the process: the
// shelves, the tray menu and the ordinary windows.
class RootCoordinator final : public QObject {
    Q_OBJECT
public:
    struct Dependencies {
        Preferences& preferences;
        PersistentDragSessionStore& sessionStore;
        DragSessionUserInterface& shelfInterface;
        ScreenEnvironment& screens;
        const PasteboardSource& clipboard;
        MessageWindowCenter& messages;
        Clock& clock;
        FileWatcher& fileWatcher;
        // The desktop's actions for every shelf; none leaves shelves with their own actions only.
        DesktopActions* desktopActions = nullptr;
    };

    explicit RootCoordinator(const Dependencies& dependencies, QObject* parent = nullptr);
    ~RootCoordinator() override;

    WindowCoordinator& windowCoordinator() const { return *m_windowCoordinator; }
    SessionController& sessionController() const { return *m_sessionController; }
    MenuItemController& menuItemController() const { return *m_menuItemController; }
    PersistentDragSessionStore& sessionStore() const { return m_dependencies.sessionStore; }

Q_SIGNALS:
    // The quit item or the Quit shortcut; the application decides.
    void terminationRequested();

private:
    void start();
    void performFirstRunStep();
    void sessionControllerDidChangeSessions();

    Dependencies m_dependencies;
    // The program's own desktop actions when the caller gives none.
    std::unique_ptr<DesktopActions> m_desktopActions;
    std::unique_ptr<WindowCoordinator> m_windowCoordinator;
    std::unique_ptr<SessionController> m_sessionController;
    std::unique_ptr<MenuItemController> m_menuItemController;
    // After the session controller: the recognizer calls it until the recognizer is gone.
    std::unique_ptr<DragMonitor> m_dragMonitor;
    std::unique_ptr<DragRecognizer> m_dragRecognizer;
    std::unique_ptr<DragRecognizerConfiguration> m_recognizerConfiguration;
    qsizetype m_shelfCount = 0;
};

} // namespace Vantrope
