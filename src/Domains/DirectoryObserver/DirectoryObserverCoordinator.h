// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserver.h"
#include "DirectoryObserverCoordinatorDataSource.h"
#include "ObservedDirectory.h"

#include <expected>
#include <map>
#include <memory>
#include <QHash>
#include <QList>
#include <QUrl>

namespace Vantrope {

enum class ObservedDirectoryStartObservationError { restricted, alreadyObserving, unknown };

// Owns one `DirectoryObserver` per watched folder and turns their reports into shelves: the first
// report of a folder opens a shelf with a message, later ones go to that shelf while it stays open
// (if the folder says so). Main thread only.
class DirectoryObserverCoordinator final {
public:
    enum class ObservationStatus { notObserving = 0, restricted = 1, observing = 2 };

    DirectoryObserverCoordinator(Clock& clock, DirectoryWatcher& watcher);
    ~DirectoryObserverCoordinator();
    DirectoryObserverCoordinator(const DirectoryObserverCoordinator&) = delete;
    DirectoryObserverCoordinator& operator=(const DirectoryObserverCoordinator&) = delete;

    // Not owned; whoever sets it clears it before it goes.
    void setDataSource(DirectoryObserverCoordinatorDataSource* dataSource) { m_dataSource = dataSource; }

    // Starts every stored folder that is not paused, with its options.
    void startObservingAtLaunch(const QList<ObservedDirectory>& items);

    // The folder's observer, made (stopped, with no rules) when there is none yet.
    DirectoryObserver& observer(const QUrl& url);
    std::expected<void, ObservedDirectoryStartObservationError> startObserving(DirectoryObserver& observer);
    // Stops the tree and forgets the shelf the folder opened; the observer stays.
    void stopObserving(DirectoryObserver& observer);
    bool removeObserver(const QUrl& url);
    ObservationStatus observationStatus(const QUrl& url) const;

    // Stops any observer of exactly this folder and refuses to start one; folders inside it may be watched.
    void restrictDirectory(const QUrl& url);
    void clearRestrictedDirectories() { m_restrictedDirectories.clear(); }
    QList<QUrl> restrictedDirectories() const { return m_restrictedDirectories; }

    // The shelf the folder opened last, kept in memory only.
    std::optional<QString> shelfIdentifier(const QUrl& url) const;

private:
    void handleChange(DirectoryObserver& observer, const QList<QUrl>& urls);

    Clock& m_clock;
    DirectoryWatcher& m_watcher;
    DirectoryObserverCoordinatorDataSource* m_dataSource = nullptr;
    QList<QUrl> m_restrictedDirectories;
    std::map<QUrl, std::unique_ptr<DirectoryObserver>> m_observers;
    QHash<QUrl, QString> m_observerShelves;
};

} // namespace Vantrope
