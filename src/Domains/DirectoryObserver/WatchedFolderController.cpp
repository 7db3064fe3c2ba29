// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WatchedFolderController.h"

#include "DirectoryObserverLogging.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <sys/stat.h>
#include <unistd.h>

namespace Vantrope {

namespace {

using Error = WatchedFolderController::Error;
using State = WatchedFolderController::State;

// Listing a folder takes both read and search permission.
std::optional<int> accessProblem(const QString& path)
{
    if (::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK | X_OK, AT_EACCESS) != 0) {
        return errno;
    }
    return std::nullopt;
}

quint64 inodeOf(const QString& path)
{
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? quint64(status.st_ino) : 0;
}

State availability(const QString& path)
{
    if (!QFileInfo(path).isDir()) {
        return State::missing;
    }
    return accessProblem(path) ? State::unreadable : State::active;
}

} // namespace

WatchedFolderController::WatchedFolderController(ObservedDirectoryStore& store,
                                                 DirectoryObserverCoordinator& coordinator, Clock& clock,
                                                 DirectoryWatcher& watcher, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_coordinator(coordinator)
    , m_clock(clock)
    , m_watcher(watcher)
{}

WatchedFolderController::~WatchedFolderController() = default;

void WatchedFolderController::startAtLaunch()
{
    const QList<ObservedDirectory> items = m_store.items();
    m_coordinator.startObservingAtLaunch(items);
    for (const ObservedDirectory& directory : items) {
        m_startedInodes.insert(directory.identifier, inodeOf(directory.url.toLocalFile()));
    }
    m_started = true;
    recheck();
}

void WatchedFolderController::recheckIfStarted()
{
    if (m_started) {
        recheck();
    }
}

void WatchedFolderController::scheduleRecheckIfNeeded()
{
    if (!m_started || m_recheckScheduled || m_unavailable.isEmpty()) {
        return;
    }
    m_recheckScheduled = true;
    m_clock.schedule(recheckInterval, DispatchQueue::main(),
                     [self = QPointer<WatchedFolderController>(this)] {
                         if (self) {
                             self->m_recheckScheduled = false;
                             self->recheck();
                         }
                     });
}

void WatchedFolderController::updateRootWatches()
{
    QSet<QString> running;
    for (const ObservedDirectory& directory : m_store.items()) {
        if (!m_coordinator.observer(directory.url).isRunning()) {
            continue;
        }
        running.insert(directory.identifier);
        if (m_rootWatches.contains(directory.identifier)) {
            continue;
        }
        // The signal comes on the watcher's thread; the check belongs on ours. A watch never signals
        // once destroyed, and it goes with this controller.
        auto watch = m_watcher.watch(directory.url.toLocalFile(), [this] {
            QMetaObject::invokeMethod(this, &WatchedFolderController::recheck, Qt::QueuedConnection);
        });
        if (watch) {
            m_rootWatches.emplace(directory.identifier, std::move(*watch));
        }
    }
    std::erase_if(m_rootWatches, [&](const auto& entry) { return !running.contains(entry.first); });
}

void WatchedFolderController::recheck()
{
    bool changed = false;
    for (const ObservedDirectory& directory : m_store.items()) {
        if (directory.lifecycle.isStopped ||
            m_coordinator.observationStatus(directory.url) ==
                DirectoryObserverCoordinator::ObservationStatus::restricted) {
            continue;
        }
        const QString path = directory.url.toLocalFile();
        const State state = availability(path);
        if (state != State::active) {
            if (!m_unavailable.contains(directory.identifier)) {
                qCInfo(lcDirectoryObserver).noquote()
                    << QStringLiteral("Watched folder %1 is %2; it starts again once it is back")
                           .arg(path, stateName(state));
                m_unavailable.insert(directory.identifier);
                changed = true;
            }
            DirectoryObserver& observer = m_coordinator.observer(directory.url);
            if (observer.isRunning()) {
                m_coordinator.stopObserving(observer);
            }
            observer.determineStatus();
            continue;
        }
        const bool cameBack = m_unavailable.remove(directory.identifier);
        changed = changed || cameBack;
        if (cameBack) {
            qCInfo(lcDirectoryObserver).noquote() << QStringLiteral("Watched folder %1 is back").arg(path);
        }
        DirectoryObserver& observer = m_coordinator.observer(directory.url);
        // A folder deleted and made again between two looks is another directory, which the old watch
        // does not see.
        const bool replaced =
            observer.isRunning() && m_startedInodes.value(directory.identifier) != inodeOf(path);
        if (cameBack || replaced) {
            if (observer.isRunning()) {
                m_coordinator.stopObserving(observer);
            }
            startFolder(directory);
        }
    }
    // Paused, removed and restricted folders are not waited for.
    QSet<QString> shouldRun;
    for (const ObservedDirectory& directory : m_store.items()) {
        if (!directory.lifecycle.isStopped &&
            m_coordinator.observationStatus(directory.url) !=
                DirectoryObserverCoordinator::ObservationStatus::restricted) {
            shouldRun.insert(directory.identifier);
        }
    }
    m_unavailable.intersect(shouldRun);
    updateRootWatches();
    scheduleRecheckIfNeeded();
    if (changed) {
        Q_EMIT foldersChanged();
    }
}

void WatchedFolderController::startFolder(const ObservedDirectory& directory)
{
    DirectoryObserver& observer = m_coordinator.observer(directory.url);
    observer.setFilters(directory.filters);
    observer.setAppendsToExistingShelf(directory.options.appendsToInitialShelf);
    observer.setCaseSensitiveItemMatchers(directory.options.rulesCaseSensitive);
    observer.setObservesNestedDirectories(directory.options.observesNestedDirectories);
    observer.restartIfNeeded();
    m_startedInodes.insert(directory.identifier, inodeOf(directory.url.toLocalFile()));
    // Refusals are logged by the coordinator; the state shows them.
    (void)m_coordinator.startObserving(observer);
    observer.determineStatus();
}

std::optional<ObservedDirectory> WatchedFolderController::find(const QString& identifier) const
{
    for (const ObservedDirectory& directory : m_store.items()) {
        if (directory.identifier.compare(identifier, Qt::CaseInsensitive) == 0) {
            return directory;
        }
    }
    return std::nullopt;
}

WatchedFolderController::State WatchedFolderController::stateOf(const ObservedDirectory& directory) const
{
    if (directory.lifecycle.isStopped) {
        return State::paused;
    }
    if (m_coordinator.observationStatus(directory.url) ==
        DirectoryObserverCoordinator::ObservationStatus::restricted) {
        return State::restricted;
    }
    const State available = availability(directory.url.toLocalFile());
    if (available != State::active) {
        return available;
    }
    return m_coordinator.observationStatus(directory.url) ==
                   DirectoryObserverCoordinator::ObservationStatus::observing
               ? State::active
               : State::inactive;
}

QList<WatchedFolderController::Folder> WatchedFolderController::folders() const
{
    QList<Folder> result;
    for (const ObservedDirectory& directory : m_store.items()) {
        result.append({directory, stateOf(directory)});
    }
    return result;
}

std::expected<WatchedFolderController::Folder, Error> WatchedFolderController::add(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    const QFileInfo info(clean);
    if (!info.exists()) {
        return std::unexpected(Error{Error::Kind::missing, QStringLiteral("no such folder: %1").arg(clean)});
    }
    if (!info.isDir()) {
        return std::unexpected(Error{Error::Kind::notAFolder, QStringLiteral("not a folder: %1").arg(clean)});
    }
    if (const auto problem = accessProblem(clean)) {
        return std::unexpected(
            Error{Error::Kind::unreadable, QStringLiteral("cannot read %1: %2")
                                               .arg(clean, QString::fromLocal8Bit(std::strerror(*problem)))});
    }
    const QUrl url = QUrl::fromLocalFile(clean);
    for (const ObservedDirectory& directory : m_store.items()) {
        if (QDir::cleanPath(directory.url.toLocalFile()) == clean) {
            return std::unexpected(
                Error{Error::Kind::alreadyWatched,
                      QStringLiteral("%1 is watched already, as %2").arg(clean, directory.identifier)});
        }
    }
    if (m_coordinator.observationStatus(url) == DirectoryObserverCoordinator::ObservationStatus::restricted) {
        return std::unexpected(
            Error{Error::Kind::restricted,
                  QStringLiteral("%1 is the screenshot folder, which the screenshot shelf watches "
                                 "already")
                      .arg(clean)});
    }
    // There are no security scopes here: the bookmark is the path itself.
    const ObservedDirectory directory = ObservedDirectory::make(url, QFile::encodeName(clean));
    if (!m_store.saveItem(directory)) {
        // The store keeps the change in memory; a folder the user was told failed must not linger there.
        m_store.deleteItem(directory);
        return std::unexpected(Error{
            Error::Kind::saveFailed,
            QStringLiteral("could not save the list of watched folders at %1").arg(m_store.filePath())});
    }
    startFolder(directory);
    recheckIfStarted();
    Q_EMIT foldersChanged();
    return Folder{directory, stateOf(directory)};
}

std::expected<WatchedFolderController::Folder, Error>
WatchedFolderController::remove(const QString& identifier)
{
    const auto directory = find(identifier);
    if (!directory) {
        return std::unexpected(
            Error{Error::Kind::unknownFolder,
                  QStringLiteral("no watched folder has the identifier \"%1\"").arg(identifier)});
    }
    m_coordinator.removeObserver(directory->url);
    m_unavailable.remove(directory->identifier);
    m_startedInodes.remove(directory->identifier);
    const bool deleted = m_store.deleteItem(*directory);
    recheckIfStarted();
    Q_EMIT foldersChanged();
    if (!deleted) {
        return std::unexpected(Error{
            Error::Kind::saveFailed,
            QStringLiteral("could not save the list of watched folders at %1").arg(m_store.filePath())});
    }
    return Folder{*directory, State::inactive};
}

std::expected<WatchedFolderController::Folder, Error>
WatchedFolderController::pause(const QString& identifier)
{
    auto directory = find(identifier);
    if (!directory) {
        return std::unexpected(
            Error{Error::Kind::unknownFolder,
                  QStringLiteral("no watched folder has the identifier \"%1\"").arg(identifier)});
    }
    directory->lifecycle.isStopped = true;
    const bool saved = m_store.saveItem(*directory);
    m_coordinator.stopObserving(m_coordinator.observer(directory->url));
    recheckIfStarted();
    Q_EMIT foldersChanged();
    if (!saved) {
        return std::unexpected(
            Error{Error::Kind::saveFailed,
                  QStringLiteral("paused for now, but could not save the list of watched folders "
                                 "at %1")
                      .arg(m_store.filePath())});
    }
    return Folder{*directory, stateOf(*directory)};
}

std::expected<WatchedFolderController::Folder, Error>
WatchedFolderController::resume(const QString& identifier)
{
    auto directory = find(identifier);
    if (!directory) {
        return std::unexpected(
            Error{Error::Kind::unknownFolder,
                  QStringLiteral("no watched folder has the identifier \"%1\"").arg(identifier)});
    }
    directory->lifecycle.isStopped = false;
    const bool saved = m_store.saveItem(*directory);
    if (availability(directory->url.toLocalFile()) == State::active) {
        DirectoryObserver& observer = m_coordinator.observer(directory->url);
        if (!observer.isRunning()) {
            startFolder(*directory);
        }
    }
    recheckIfStarted();
    Q_EMIT foldersChanged();
    if (!saved) {
        return std::unexpected(
            Error{Error::Kind::saveFailed,
                  QStringLiteral("resumed for now, but could not save the list of watched folders "
                                 "at %1")
                      .arg(m_store.filePath())});
    }
    return Folder{*directory, stateOf(*directory)};
}

std::expected<WatchedFolderController::Folder, Error>
WatchedFolderController::change(const ObservedDirectory& changed)
{
    auto directory = find(changed.identifier);
    if (!directory) {
        return std::unexpected(
            Error{Error::Kind::unknownFolder,
                  QStringLiteral("no watched folder has the identifier \"%1\"").arg(changed.identifier)});
    }
    directory->options = changed.options;
    directory->filters = changed.filters;
    const bool saved = m_store.saveItem(*directory);
    DirectoryObserver& observer = m_coordinator.observer(directory->url);
    if (observer.isRunning()) {
        m_coordinator.stopObserving(observer);
        startFolder(*directory);
    }
    Q_EMIT foldersChanged();
    if (!saved) {
        return std::unexpected(
            Error{Error::Kind::saveFailed,
                  QStringLiteral("changed for now, but could not save the list of watched folders at %1")
                      .arg(m_store.filePath())});
    }
    return Folder{*directory, stateOf(*directory)};
}

QString WatchedFolderController::stateName(State state)
{
    switch (state) {
    case State::active:
        return QStringLiteral("active");
    case State::paused:
        return QStringLiteral("paused");
    case State::missing:
        return QStringLiteral("missing");
    case State::unreadable:
        return QStringLiteral("unreadable");
    case State::restricted:
        return QStringLiteral("restricted");
    case State::inactive:
        break;
    }
    return QStringLiteral("inactive");
}

} // namespace Vantrope
