// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Activation/DragRecognizerDelegate.h"
#include "Domains/DragSession/DragSessionCoordinator.h"
#include "Domains/DragSession/DragSessionLabelColorController.h"
#include "Domains/DragSession/Screen.h"
#include "Libraries/Core/DispatchQueue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QPointF>
#include <QUrl>

namespace Vantrope {

class DesktopActions;
class FileWatcher;
class MessageWindowCenter;
class PersistentDragSessionStore;
class Preferences;

// Owns every open shelf: opens them for gestures, hot keys, the tray, restored and handed-over files,
// screenshots and the top drop zone, and closes them by filter.
class SessionController final : public QObject,
                                public DragSessionCoordinatorDelegate,
                                public DragRecognizerDelegate {
    Q_OBJECT
public:
    // `empty` closes shelves with no items, no pending instant action, no drop being read and nothing
    // dragged out.
    using CloseFilter = SessionCloseFilter;

    // Marks the shelf that collects screenshots.
    static constexpr int screenshotShelfTag = 99;
    static constexpr std::chrono::milliseconds screenshotMessageDuration{3000};

    struct Dependencies {
        PersistentDragSessionStore& sessionStore;
        Preferences& preferences;
        DragSessionUserInterface& userInterface;
        ScreenEnvironment& screens;
        MessageWindowCenter& messages;
        const PasteboardSource& clipboard;
        Clock& clock;
        FileWatcher& fileWatcher;
        // What every shelf offers beside its own actions; none in tests that don't care.
        DesktopActions* desktopActions = nullptr;
        std::function<void(const QString& text)> copyText = {};
        std::function<void()> openPreferences = {};
        // What every shelf's file operations need; none offers no file operations.
        const OperationsController::Environment* fileOperations = nullptr;
    };

    explicit SessionController(const Dependencies& dependencies, QObject* parent = nullptr);
    ~SessionController() override;

    // A copy of the open shelves, in order of creation; safe to call from any thread.
    QList<std::shared_ptr<DragSessionCoordinator>> coordinators() const;

    std::shared_ptr<DragSessionCoordinator> startSession(DragSessionSource source);
    std::shared_ptr<DragSessionCoordinator> coordinator(const QString& identifier) const;
    // The shelf the user touched last (opened, dropped on, acted on); the newest open one otherwise.
    std::shared_ptr<DragSessionCoordinator> lastUsedCoordinator() const;

    // The gesture recognizer's two ends: a shake or modifier drag began at a point, the drag ended.
    void gestureBegan(std::optional<QPointF> point);
    void gestureEnded() { closeSessions(CloseFilter::empty); }

    void closeSessions(CloseFilter filter);
    // Saves every open shelf as it is now, as the program ends: each one is then among the recent ones.
    void saveOpenSessions();
    bool openDragSession(const QString& identifier);
    bool openMostRecentClosedDragSession();
    // Files handed over by another program or the command line.
    void openFiles(const QList<QUrl>& urls, const std::optional<Screen>& screen = std::nullopt);
    void handleScreenshot(const QUrl& url);
    // A drop on the top drop zone.
    void handleDropZoneDrop(const DraggableList& draggables, const QPointF& point, const Screen& screen);

    // Puts a file on the clipboard; set by the program, absent in tests that don't care.
    std::function<void(const QUrl&)> copyToClipboard;

    // DragRecognizerDelegate
    void dragRecognizerDidBegin(std::optional<QPointF> location) override { gestureBegan(location); }
    void dragRecognizerDidEnd(SessionCloseFilter filter) override { closeSessions(filter); }

    // DragSessionCoordinatorDelegate
    void coordinatorDidStop(DragSessionCoordinator& coordinator) override;
    void openNewSession(const DraggableList& draggables, const std::optional<Screen>& screen) override;

Q_SIGNALS:
    // The set of open shelves changed.
    void sessionsChanged();

private:
    QPointF originFor(const DragSessionSource& source) const;
    DragSessionLabel newLabel();
    void relabel();
    void setCoordinators(QList<std::shared_ptr<DragSessionCoordinator>> coordinators);
    bool isClosable(const DragSessionCoordinator& coordinator, CloseFilter filter) const;

    Dependencies m_dependencies;
    DragSessionLabelColorController m_labelController;
    QPointF m_lastDraggingPoint;
    mutable DispatchQueue m_coordinatorsQueue;
    QList<std::shared_ptr<DragSessionCoordinator>> m_coordinators; // on m_coordinatorsQueue only
    // Replaced lists, let go of on the main thread once the current call has returned.
    QList<std::shared_ptr<DragSessionCoordinator>> m_released;
    bool m_releaseScheduled = false;
};

} // namespace Vantrope
