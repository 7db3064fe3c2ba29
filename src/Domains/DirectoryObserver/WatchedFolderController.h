// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverCoordinator.h"
#include "DirectoryWatcher.h"
#include "ObservedDirectoryStore.h"

#include <chrono>
#include <expected>
#include <map>
#include <memory>
#include <QHash>
#include <QObject>
#include <QSet>

namespace Vantrope {

// The user's watched folders at work: starts the stored ones, adds, removes, pauses and resumes them,
// and keeps an eye on folders that vanish or become unreadable, so that each starts again by itself
// once it is back. Main thread only.
class WatchedFolderController final : public QObject {
    Q_OBJECT
public:
    enum class State { active, paused, missing, unreadable, restricted, inactive };

    struct Folder {
        ObservedDirectory directory;
        State state = State::inactive;
    };

    struct Error {
        enum class Kind {
            missing,
            unreadable,
            notAFolder,
            alreadyWatched,
            restricted,
            unknownFolder,
            saveFailed
        };
        Kind kind = Kind::unknownFolder;
        QString message;
    };

    // How often vanished and unreadable folders are looked at again. Folders that run are not polled:
    // a change to the folder itself (deleted, moved, permissions, unmounted) wakes the check instead.
    static constexpr std::chrono::seconds recheckInterval{2};

    WatchedFolderController(ObservedDirectoryStore& store, DirectoryObserverCoordinator& coordinator,
                            Clock& clock, DirectoryWatcher& watcher, QObject* parent = nullptr);
    ~WatchedFolderController() override;

    // Starts every stored folder that is not paused, then keeps checking on them.
    void startAtLaunch();

    QList<Folder> folders() const;
    // `path` is absolute. The folder is stored before it starts, so a folder that cannot start now is kept.
    std::expected<Folder, Error> add(const QString& path);
    std::expected<Folder, Error> remove(const QString& identifier);
    std::expected<Folder, Error> pause(const QString& identifier);
    std::expected<Folder, Error> resume(const QString& identifier);
    // Stores the options and rules of `directory` over those of the folder with its identifier, and starts
    // that folder's observer again with them when it runs. Its place and paused state stay as stored.
    std::expected<Folder, Error> change(const ObservedDirectory& directory);

    // Looks at every folder that should run: stops those gone or unreadable, starts those back.
    void recheck();

    static QString stateName(State state);

Q_SIGNALS:
    // A folder was added, removed, paused, resumed or changed, or one went away or came back.
    void foldersChanged();

private:
    std::optional<ObservedDirectory> find(const QString& identifier) const;
    State stateOf(const ObservedDirectory& directory) const;
    // Copies the stored options into the folder's observer and starts it where it can run.
    void startFolder(const ObservedDirectory& directory);
    // After a change by the user, once the folders have started.
    void recheckIfStarted();
    // Polls while some folder that should run cannot; stops once none is left.
    void scheduleRecheckIfNeeded();
    // Keeps a watch on the folder itself for each folder that runs, and none on the others.
    void updateRootWatches();

    ObservedDirectoryStore& m_store;
    DirectoryObserverCoordinator& m_coordinator;
    Clock& m_clock;
    bool m_started = false;
    // Folders last seen gone or unreadable, so each change is logged once.
    QSet<QString> m_unavailable;
    // The directory each running folder was started on, by identifier: one deleted and made again
    // under the same name is another directory, which the old watch does not see.
    QHash<QString, quint64> m_startedInodes;
    DirectoryWatcher& m_watcher;
    bool m_recheckScheduled = false;
    // By identifier, on the folders that run.
    std::map<QString, std::unique_ptr<DirectoryWatcher::Watch>> m_rootWatches;
};

} // namespace Vantrope
