// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryObserverCoordinatorDataSource.h"
#include "Domains/DragSession/TemporaryDataSanitizer.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/FileOperations/OperationsController.h"

#include <memory>
#include <QObject>

namespace Vantrope {

class DesktopActions;
class DirectoryObserverCoordinator;
class BookmarkStore;
class DirectoryWatcher;
class DragSessionUserInterface;
class FileWatcher;
class MenuItemController;
class MessageWindowCenter;
class ObservedDirectoryStore;
class PasteboardSource;
class PersistentDragSessionStore;
class DragMonitor;
class DragRecognizer;
class DragRecognizerConfiguration;
class Preferences;
class ScreenEnvironment;
class SessionController;
class SettingsService;
class UserScreenshotObserver;
class WatchedFolderController;
class WatchedFolderService;
class WindowCoordinator;

// Composes the running program once launching is done and keeps it for the life of the process: the
// shelves, the tray menu and the ordinary windows.
class RootCoordinator final : public QObject, private DirectoryObserverCoordinatorDataSource {
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
        // The folder watches of the watched folders; none gives them the kernel's.
        DirectoryWatcher* directoryWatcher = nullptr;
    };

    explicit RootCoordinator(const Dependencies& dependencies, QObject* parent = nullptr);
    ~RootCoordinator() override;

    WindowCoordinator& windowCoordinator() const { return *m_windowCoordinator; }
    SessionController& sessionController() const { return *m_sessionController; }
    MenuItemController& menuItemController() const { return *m_menuItemController; }
    PersistentDragSessionStore& sessionStore() const { return m_dependencies.sessionStore; }
    WatchedFolderController& watchedFolders() const { return *m_watchedFolders; }
    WatchedFolderService& watchedFolderService() const { return *m_watchedFolderService; }
    SettingsService& settingsService() const { return *m_settingsService; }
    TemporaryDataSanitizer& sanitizer() const { return *m_sanitizer; }
    UserScreenshotObserver& userScreenshotObserver() const { return *m_userScreenshotObserver; }
    // Clears the temporary data of shelves no longer open or recent now, however recent the last run.
    void purgeTemporaryData(TemporaryDataSanitizer::Completion done = {});

Q_SIGNALS:
    // The quit item or the Quit shortcut; the application decides.
    void terminationRequested();

private:
    void start();
    void performFirstRunStep();
    void sessionControllerDidChangeSessions();
    // Starts the screenshot shelf's observer when the preference says so, and keeps watched folders out
    // of its folder meanwhile.
    void configureScreenshotObservation();
    // What the sanitizer must leave: the open and recent shelves' files and thumbnails.
    TemporaryDataSanitizer::Protected temporaryDataInUse() const;

    // Shelves for the watched folders.
    bool appendFiles(const QString& shelfIdentifier, const QList<QUrl>& files) override;
    std::optional<QString> createShelf(const QList<QUrl>& files) override;
    void showMessage(const QString& shelfIdentifier, const QString& text) override;

    Dependencies m_dependencies;
    // The program's own desktop actions when the caller gives none.
    std::unique_ptr<DesktopActions> m_desktopActions;
    // What every shelf's file operations share: the windows that ask, the remembered values, the user's
    // own operations and scripts. They outlive the shelves.
    std::unique_ptr<OperationsDisplayController> m_operationsDisplay;
    std::unique_ptr<OperationChoiceStore> m_operationChoices;
    std::unique_ptr<UserOperationStore> m_userOperations;
    std::unique_ptr<ApplicationScriptsStore> m_applicationScripts;
    OperationsController::Environment m_fileOperations;
    // The folder watches of the watched folders and the screenshot shelf.
    std::unique_ptr<DirectoryWatcher> m_directoryWatcher;
    DirectoryWatcher* m_folderWatcher = nullptr;
    std::unique_ptr<BookmarkStore> m_screenshotBookmarkStore;
    std::unique_ptr<UserScreenshotObserver> m_userScreenshotObserver;
    std::unique_ptr<WindowCoordinator> m_windowCoordinator;
    std::unique_ptr<SessionController> m_sessionController;
    std::unique_ptr<MenuItemController> m_menuItemController;
    std::unique_ptr<ObservedDirectoryStore> m_observedDirectoryStore;
    std::unique_ptr<DirectoryObserverCoordinator> m_directoryObserverCoordinator;
    std::unique_ptr<WatchedFolderController> m_watchedFolders;
    std::unique_ptr<WatchedFolderService> m_watchedFolderService;
    std::unique_ptr<SettingsService> m_settingsService;
    std::unique_ptr<TemporaryDataSanitizer> m_sanitizer;
    // After the session controller: the recognizer calls it until the recognizer is gone.
    std::unique_ptr<DragMonitor> m_dragMonitor;
    std::unique_ptr<DragRecognizer> m_dragRecognizer;
    std::unique_ptr<DragRecognizerConfiguration> m_recognizerConfiguration;
    qsizetype m_shelfCount = 0;
};

} // namespace Vantrope
