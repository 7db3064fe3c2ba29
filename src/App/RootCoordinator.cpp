// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RootCoordinator.h"

#include "AppLogging.h"
#include "DisplayEnvironment.h"
#include "Domains/Actions/DesktopActions.h"
#include "Domains/Activation/DragMonitor.h"
#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/DragRecognizerConfiguration.h"
#include "Domains/DirectoryObserver/DirectoryObserverCoordinator.h"
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "Domains/DirectoryObserver/WatchedFolderController.h"
#include "Domains/DragSession/DragSessionCoordinator.h"
#include "Domains/DragSession/DragSessionItemsController.h"
#include "Domains/DragSession/DragSessionSource.h"
#include "Domains/DragSession/DragSessionWindow.h"
#include "Domains/DragSession/Message.h"
#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSession.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Domains/UserScreenshot/UserScreenshotObserver.h"
#include "DragMonitorFactory.h"
#include "Libraries/Core/BookmarkStore.h"
#include "Libraries/Core/FilesSnapshotController.h"
#include "Libraries/FileOperations/ApplicationScriptsStore.h"
#include "Libraries/FileOperations/ImageOperations.h"
#include "Libraries/FileOperations/OperationChoiceStore.h"
#include "Libraries/FileOperations/UserOperationStore.h"
#include "MenuItemController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Platform/Linux/InotifyDirectoryWatcher.h"
#include "Platform/Qt/QtOperationsDisplayController.h"
#include "Preferences/Preferences.h"
#include "SettingsService.h"
#include "Version.h"
#include "WatchedFolderService.h"
#include "WindowCoordinator.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace Vantrope {

RootCoordinator::RootCoordinator(const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_dependencies(dependencies)
{
    m_folderWatcher = dependencies.directoryWatcher;
    if (!m_folderWatcher) {
        m_directoryWatcher = std::make_unique<InotifyDirectoryWatcher>();
        m_folderWatcher = m_directoryWatcher.get();
    }
    m_screenshotBookmarkStore = std::make_unique<BookmarkStore>(QStringLiteral("user-screenshot"), 1);
    m_userScreenshotObserver = std::make_unique<UserScreenshotObserver>(*m_screenshotBookmarkStore,
                                                                        *m_folderWatcher, dependencies.clock);
    m_windowCoordinator = std::make_unique<WindowCoordinator>(dependencies.preferences);
    DesktopActions* desktopActions = dependencies.desktopActions;
    if (!desktopActions) {
        m_desktopActions = std::make_unique<LinuxDesktopActions>();
        desktopActions = m_desktopActions.get();
    }
    WindowCoordinator* windows = m_windowCoordinator.get();
    m_operationsDisplay = std::make_unique<QtOperationsDisplayController>();
    m_operationChoices = std::make_unique<OperationChoiceStore>();
    m_userOperations = std::make_unique<UserOperationStore>();
    m_applicationScripts = std::make_unique<ApplicationScriptsStore>();
    m_fileOperations.display = m_operationsDisplay.get();
    m_fileOperations.choices = m_operationChoices.get();
    m_fileOperations.userOperations = m_userOperations.get();
    m_fileOperations.scripts = m_applicationScripts.get();
    m_fileOperations.metadata = ImageOperations::describeMetadata;
    m_sessionController = std::make_unique<SessionController>(SessionController::Dependencies{
        dependencies.sessionStore, dependencies.preferences, dependencies.shelfInterface,
        dependencies.screens, dependencies.messages, dependencies.clipboard, dependencies.clock,
        dependencies.fileWatcher, desktopActions,
        [](const QString& text) { QGuiApplication::clipboard()->setText(text); },
        [windows] { windows->showSettings(); }, &m_fileOperations});
    m_menuItemController =
        std::make_unique<MenuItemController>(*m_sessionController, dependencies.sessionStore);
    m_observedDirectoryStore = std::make_unique<ObservedDirectoryStore>(QString(), false);
    m_directoryObserverCoordinator =
        std::make_unique<DirectoryObserverCoordinator>(dependencies.clock, *m_folderWatcher);
    m_watchedFolders = std::make_unique<WatchedFolderController>(
        *m_observedDirectoryStore, *m_directoryObserverCoordinator, dependencies.clock, *m_folderWatcher);
    m_watchedFolderService = std::make_unique<WatchedFolderService>(*m_watchedFolders);
    m_settingsService = std::make_unique<SettingsService>(dependencies.preferences);
    m_sanitizer = std::make_unique<TemporaryDataSanitizer>(TemporaryDataSanitizer::reservedDirectories(),
                                                           dependencies.preferences, dependencies.clock);

    start();
    performFirstRunStep();
    // Items left by a share extension: on Linux other programs hand files over the session bus instead.
    m_watchedFolders->startAtLaunch();
    dependencies.preferences.setValue(PreferenceKeys::hasLaunchedApp, true);
}

RootCoordinator::~RootCoordinator()
{
    // The settings pages work on the watched folders and the drag monitor, which go before the windows.
    delete m_windowCoordinator->settingsWindow();
    m_directoryObserverCoordinator->setDataSource(nullptr);
}

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
    m_windowCoordinator->setSettingsContext(SettingsWindow::Context{
        .preferences = m_dependencies.preferences,
        .session = DisplayEnvironment::detect().kind(),
        .dragMonitor = m_dragMonitor.get(),
        .watchedFolders = m_watchedFolders.get(),
        .screenshots = m_userScreenshotObserver.get(),
        .screenshotFolderChanged = [this] { configureScreenshotObservation(); },
        .purgeTemporaryData =
            [this](ApplicationDataSettingsPage::PurgeCompletion done) {
                purgeTemporaryData(std::move(done));
            },
        .preferencesFile = {},
    });
    configureScreenshotObservation();
    connect(&m_dependencies.preferences, &Preferences::changed, this, [this](PreferenceKey key) {
        if (key == PreferenceKey::screenshotObservationEnabled) {
            configureScreenshotObservation();
        }
    });
    m_directoryObserverCoordinator->setDataSource(this);
    m_sanitizer->startIfDue(temporaryDataInUse(), [](const TemporaryDataSanitizer::Result& result) {
        qCInfo(lcApp) << "Temporary data sanitized:" << result.removed << "removed," << result.busy
                      << "still being written," << result.failed << "failed";
    });
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
    m_menuItemController->followPreferences(m_dependencies.preferences);
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

void RootCoordinator::configureScreenshotObservation()
{
    m_userScreenshotObserver->stop();
    m_directoryObserverCoordinator->clearRestrictedDirectories();
    if (!m_dependencies.preferences.value(PreferenceKeys::screenshotObservationEnabled)) {
        return;
    }
    if (!m_userScreenshotObserver->directory()) {
        m_userScreenshotObserver->changeDirectory(
            QUrl::fromLocalFile(UserScreenshotObserver::defaultDirectory()));
    }
    if (const auto folder = m_userScreenshotObserver->directory()) {
        m_directoryObserverCoordinator->restrictDirectory(*folder);
    }
    SessionController* sessions = m_sessionController.get();
    sessions->copyToClipboard = [](const QUrl& url) {
        auto* data = new QMimeData;
        data->setUrls({url});
        QGuiApplication::clipboard()->setMimeData(data);
    };
    m_userScreenshotObserver->setChangeHandler(
        [sessions](const QUrl& url) { sessions->handleScreenshot(url); });
    (void)m_userScreenshotObserver->start();
}

void RootCoordinator::purgeTemporaryData(TemporaryDataSanitizer::Completion done)
{
    m_sanitizer->purge(temporaryDataInUse(), std::move(done));
}

TemporaryDataSanitizer::Protected RootCoordinator::temporaryDataInUse() const
{
    TemporaryDataSanitizer::Protected kept;
    for (const auto& shelf : m_sessionController->coordinators()) {
        for (const DraggablePtr& item : shelf->itemsController().items()) {
            if (const auto url = item->url()) {
                kept.urls.append(*url);
            }
        }
    }
    for (const auto& session : m_dependencies.sessionStore.sessions()) {
        kept.urls.append(session->bookmarkUrls());
        kept.storedShelves.insert(session->identifier());
    }
    kept.snapshotDirectory = m_dependencies.sessionStore.snapshotController().directory();
    return kept;
}

// Shelves for the watched folders

namespace {

constexpr std::chrono::milliseconds watchedFolderMessageDuration{3000};

DraggableList draggableFiles(const QList<QUrl>& files)
{
    DraggableList draggables;
    for (const QUrl& url : files) {
        if (auto file = DraggableFile::make(url)) {
            draggables.append(std::move(file));
        }
    }
    return draggables;
}

} // namespace

bool RootCoordinator::appendFiles(const QString& shelfIdentifier, const QList<QUrl>& files)
{
    const auto shelf = m_sessionController->coordinator(shelfIdentifier);
    if (!shelf) {
        return false;
    }
    shelf->appendItems(draggableFiles(files));
    shelf->throttleSave();
    return true;
}

std::optional<QString> RootCoordinator::createShelf(const QList<QUrl>& files)
{
    const DraggableList draggables = draggableFiles(files);
    if (draggables.isEmpty()) {
        return std::nullopt;
    }
    const auto shelf = m_sessionController->startSession(
        DragSessionSource::MenuBarDrop{draggables, m_dependencies.screens.mainScreen()});
    if (!shelf) {
        return std::nullopt;
    }
    return shelf->id();
}

void RootCoordinator::showMessage(const QString& shelfIdentifier, const QString& text)
{
    if (const auto shelf = m_sessionController->coordinator(shelfIdentifier)) {
        m_dependencies.messages.show(shelf->window().windowNumber(),
                                     Message::plain(Message::Icon::info, text), watchedFolderMessageDuration);
    }
}

} // namespace Vantrope
