// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserver.h"

#include "DirectoryObserverLogging.h"

#include <fcntl.h>
#include <QFile>
#include <QFileInfo>
#include <unistd.h>

namespace Vantrope {

DirectoryObserver::DirectoryObserver(const QUrl& url, const QList<DirectoryObserverFilter>& filters,
                                     bool observesNestedDirectories, const std::optional<QString>& identifier,
                                     Clock& clock, DirectoryWatcher& watcher, QObject* parent)
    : QObject(parent)
    , m_url(url)
    , m_identifier(identifier)
    , m_filters(filters)
    , m_observesNestedDirectories(observesNestedDirectories)
    , m_clock(clock)
    , m_watcher(watcher)
    , m_subdirectoryObserver(std::make_unique<SubdirectoryObserver>(url, this, clock, watcher))
{}

DirectoryObserver::~DirectoryObserver() = default;

QList<DirectoryChangeResponder*> DirectoryObserver::childResponders() const
{
    return {m_subdirectoryObserver.get()};
}

void DirectoryObserver::start()
{
    qCInfo(lcDirectoryObserver).noquote()
        << QStringLiteral("Starting to observer directory '") + m_url.toString() + QLatin1Char('\'');
    m_subdirectoryObserver->start();
    updateNumberOfResponders();
}

void DirectoryObserver::stop()
{
    qCInfo(lcDirectoryObserver) << "Stopping directory observer";
    stopTree();
}

void DirectoryObserver::stopTree()
{
    m_subdirectoryObserver->stop();
}

bool DirectoryObserver::shouldObserve(const QUrl&)
{
    return m_observesNestedDirectories &&
           m_subdirectoryObserver->descendants().size() + 1 < maximumNumberOfResponders;
}

void DirectoryObserver::didStartResponder(DirectoryChangeResponder*)
{
    updateNumberOfResponders();
}

void DirectoryObserver::didStopResponder(DirectoryChangeResponder*)
{
    updateNumberOfResponders();
}

bool DirectoryObserver::handle(const QList<Item>& items, bool removed)
{
    // The root going away is not acted on here; determineStatus() sees it.
    if (!removed) {
        resolveAddedItems(items);
    }
    return true;
}

bool DirectoryObserver::isExcludedAlways(const Item& item)
{
    // Only ".download" is compared without regard to case; the other two endings are kept as they stand.
    return item.name.startsWith(QLatin1Char('.')) || item.size == 0 ||
           item.name.toLower().endsWith(QLatin1String(".download")) ||
           item.name.endsWith(QLatin1String(".crdownload")) || item.name.endsWith(QLatin1String(".part")) ||
           item.name.startsWith(QLatin1String("~$"));
}

void DirectoryObserver::resolveAddedItems(const QList<Item>& items)
{
    qCDebug(lcDirectoryObserver).noquote()
        << QStringLiteral("Resolving ") + QString::number(items.size()) + QStringLiteral(" added items...");
    QList<QUrl> urls;
    for (const Item& item : items) {
        if (DirectoryObserverFilter::evaluate(item, m_caseSensitiveItemMatchers, m_filters) &&
            !isExcludedAlways(item)) {
            urls.append(item.url);
        }
    }
    if (urls.isEmpty()) {
        qCDebug(lcDirectoryObserver) << "No matching items found";
        return;
    }
    qCDebug(lcDirectoryObserver).noquote() << QStringLiteral("Matched ") + QString::number(urls.size()) +
                                                  QStringLiteral(", notifying consumer...");
    // Queued on this object, so a call still pending when the observer goes is dropped with it.
    QMetaObject::invokeMethod(
        this,
        [this, urls] {
            if (m_onChange) {
                const ChangeCallback onChange = m_onChange;
                onChange(urls);
            }
        },
        Qt::QueuedConnection);
}

void DirectoryObserver::restartIfNeeded()
{
    qCInfo(lcDirectoryObserver) << "Restarting subdirectory observers due to options change...";
    const bool wasRunning = isRunning();
    stopTree();
    m_subdirectoryObserver = std::make_unique<SubdirectoryObserver>(m_url, this, m_clock, m_watcher);
    if (wasRunning) {
        m_subdirectoryObserver->start();
    }
    updateNumberOfResponders();
}

void DirectoryObserver::determineStatus()
{
    const QString path = m_url.toLocalFile();
    if (!QFileInfo::exists(path)) {
        qCInfo(lcDirectoryObserver) << "Directory does not exist";
        if (isRunning()) {
            stop();
        }
        setStatus(Status::inaccessiblePath);
    } else if (::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK, AT_EACCESS) != 0) {
        qCInfo(lcDirectoryObserver) << "Directory is not readable";
        if (isRunning()) {
            stop();
        }
        setStatus(Status::unauthorized);
    } else {
        setStatus(isRunning() ? Status::active : Status::stopped);
    }
}

void DirectoryObserver::updateNumberOfResponders()
{
    const int count = int(m_subdirectoryObserver->descendants().size()) + 1;
    if (count != m_numberOfResponders) {
        m_numberOfResponders = count;
        Q_EMIT numberOfRespondersChanged(count);
    }
}

void DirectoryObserver::setStatus(Status status)
{
    if (status != m_status) {
        m_status = status;
        Q_EMIT statusChanged(status);
    }
}

} // namespace Vantrope
