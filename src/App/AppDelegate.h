// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "PendingAction.h"

#include <functional>
#include <memory>
#include <optional>
#include <QList>
#include <QObject>
#include <QUrl>

namespace Vantrope {

class ApplicationRequestHandler;
class DragSessionUserInterface;
class FileWatcher;
class Launcher;
class MessageWindowCenter;
class PasteboardSource;
class PersistentDragSessionStore;
class Preferences;
class RootCoordinator;
class ScreenEnvironment;
class VantropeServiceProvider;

// The application's side of the process: launching in order, requests that come before launching is
// done, a second launch, and whether a request to quit is honoured.
class AppDelegate final : public QObject {
    Q_OBJECT
public:
    struct Dependencies {
        Preferences& preferences;
        PersistentDragSessionStore& sessionStore;
        DragSessionUserInterface& shelfInterface;
        ScreenEnvironment& screens;
        const PasteboardSource& clipboard;
        MessageWindowCenter& messages;
        const Launcher& launcher;
        // Puts the handler on the session bus for other programs; null while it goes away.
        std::function<void(ApplicationRequestHandler*)> publishRequestHandler;
        Clock& clock;
        FileWatcher& fileWatcher;
    };

    // A second launch this soon after the first is taken as part of the first.
    static constexpr std::chrono::milliseconds reopenGracePeriod{3000};

    explicit AppDelegate(const Dependencies& dependencies, QObject* parent = nullptr);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    // An open-file request: files from the command line or from another program.
    void openFiles(const QList<QUrl>& urls);
    // The program was launched again while running.
    void handleReopen();

    // The rule for quit requests that are no direct order (the Quit shortcut, the quit item).
    bool applicationShouldTerminate() const;
    // Quits when the rule allows it.
    void requestTermination();
    // Quits: the command line's `quit`, which is an order.
    void terminate();

    RootCoordinator* rootCoordinator() const { return m_rootCoordinator.get(); }
    const QList<PendingAction>& pendingActions() const { return m_pendingActions; }
    std::optional<Clock::TimePoint> launchDate() const { return m_launchDate; }

Q_SIGNALS:
    void quitRequested();

private:
    void performPendingActions();
    void applyLaunchAtLogin();
    void applyFileLogging();

    Dependencies m_dependencies;
    std::unique_ptr<RootCoordinator> m_rootCoordinator;
    std::unique_ptr<VantropeServiceProvider> m_serviceProvider;
    QList<PendingAction> m_pendingActions;
    std::optional<Clock::TimePoint> m_launchDate;
};

} // namespace Vantrope
