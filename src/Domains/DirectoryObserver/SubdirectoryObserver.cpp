// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SubdirectoryObserver.h"

#include "DirectoryObserverLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/URL.h"

#include <algorithm>
#include <QDir>
#include <QFile>
#include <QSet>
#include <sys/stat.h>

namespace Vantrope {

namespace {

bool isDirectory(const QUrl& url)
{
    struct stat info {};
    return ::lstat(QFile::encodeName(url.toLocalFile()).constData(), &info) == 0 && S_ISDIR(info.st_mode);
}

QString debugText(const DirectoryObserverItem& item)
{
    QString text;
    QDebug(&text).nospace() << item;
    return text;
}

} // namespace

SubdirectoryObserver::SubdirectoryObserver(const QUrl& url, DirectoryChangeResponder* parentResponder,
                                           Clock& clock, DirectoryWatcher& watcher)
    : m_parentResponder(parentResponder)
    , m_clock(clock)
    , m_watcher(watcher)
    , m_changeObserver(url, changeFileLimit, changeDelay, clock, watcher)
{
    // The change observer is a member, so its callbacks never outlive this object.
    m_changeObserver.setOnAdded(
        [this](const FileSystemChangeObserver::Items& items) { handle(items, false); });
    m_changeObserver.setOnRemoved(
        [this](const FileSystemChangeObserver::Items& items) { handle(items, true); });
}

SubdirectoryObserver::~SubdirectoryObserver() = default;

QList<DirectoryChangeResponder*> SubdirectoryObserver::childResponders() const
{
    QList<DirectoryChangeResponder*> children;
    children.reserve(qsizetype(m_childResponders.size()));
    for (const auto& child : m_childResponders) {
        children.append(child.get());
    }
    return children;
}

bool SubdirectoryObserver::mayObserve(const QUrl& candidate) const
{
    const QString path = QDir::cleanPath(candidate.toLocalFile());
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    if (name.startsWith(QLatin1Char('.'))) {
        return false;
    }
    // Only directories get an observer; one with an extension (a bundle) is a directory all the same.
    if (!isDirectory(candidate)) {
        return false;
    }
    return QDir::cleanPath(URL::directory(candidate).toLocalFile()) == QDir::cleanPath(url().toLocalFile());
}

void SubdirectoryObserver::start()
{
    // Running already: the tree stands, and must not be built a second time beside itself.
    if (m_changeObserver.isRunning()) {
        m_changeObserver.start();
        return;
    }
    // The tree only grows while it starts, so the first refusal holds for the rest; a folder with
    // thousands of subdirectories is then not examined one by one.
    if (m_parentResponder && m_parentResponder->shouldObserve(url())) {
        const QList<QUrl> subdirectories = URL::subdirectories(url());
        for (const QUrl& subdirectory : subdirectories) {
            if (!mayObserve(subdirectory)) {
                continue;
            }
            if (!m_parentResponder->shouldObserve(subdirectory)) {
                break;
            }
            m_childResponders.push_back(
                std::make_unique<SubdirectoryObserver>(subdirectory, this, m_clock, m_watcher));
        }
    }
    for (const auto& child : m_childResponders) {
        child->start();
        if (m_parentResponder) {
            m_parentResponder->didStartResponder(child.get());
        }
    }
    m_changeObserver.start();
}

void SubdirectoryObserver::stop()
{
    std::vector<std::unique_ptr<SubdirectoryObserver>> children;
    children.swap(m_childResponders);
    for (auto& child : children) {
        stopChild(std::move(child));
    }
    m_changeObserver.stop();
}

void SubdirectoryObserver::stopChild(std::unique_ptr<SubdirectoryObserver> child)
{
    child->stop();
    // Already out of the list, so the count taken now no longer includes it.
    if (m_parentResponder) {
        m_parentResponder->didStopResponder(child.get());
    }
    child->m_parentResponder = nullptr;
    // The child may be the one whose report is being handled further down the stack.
    std::shared_ptr<SubdirectoryObserver> released(std::move(child));
    DispatchQueue::main().async([released] {});
}

bool SubdirectoryObserver::shouldObserve(const QUrl& candidate)
{
    return m_parentResponder && m_parentResponder->shouldObserve(candidate);
}

void SubdirectoryObserver::didStartResponder(DirectoryChangeResponder* child)
{
    if (m_parentResponder) {
        m_parentResponder->didStartResponder(child);
    }
}

void SubdirectoryObserver::didStopResponder(DirectoryChangeResponder* child)
{
    if (m_parentResponder) {
        m_parentResponder->didStopResponder(child);
    }
}

bool SubdirectoryObserver::handle(const QList<DirectoryObserverItem>& items, bool removed)
{
    if (!removed) {
        handleAddedItems(items);
        return m_parentResponder && m_parentResponder->handle(items, false);
    }
    const QList<DirectoryObserverItem> rest = handleRemovedItems(items);
    if (rest.isEmpty()) {
        return true;
    }
    return m_parentResponder && m_parentResponder->handle(rest, true);
}

void SubdirectoryObserver::handleAddedItems(const QList<DirectoryObserverItem>& items)
{
    for (const DirectoryObserverItem& item : items) {
        if (!mayObserve(item.url)) {
            continue;
        }
        const bool observed = std::any_of(m_childResponders.begin(), m_childResponders.end(),
                                          [&](const auto& child) { return child->url() == item.url; });
        if (observed || !m_parentResponder || !m_parentResponder->shouldObserve(item.url)) {
            continue;
        }
        m_childResponders.push_back(
            std::make_unique<SubdirectoryObserver>(item.url, this, m_clock, m_watcher));
        SubdirectoryObserver* child = m_childResponders.back().get();
        child->start();
        m_parentResponder->didStartResponder(child);
        qCDebug(lcDirectoryObserver).noquote()
            << QStringLiteral("Started a new responder for ") + debugText(item);
    }
}

QList<DirectoryObserverItem>
SubdirectoryObserver::handleRemovedItems(const QList<DirectoryObserverItem>& items)
{
    QSet<qint64> matchedNumbers;
    for (const DirectoryObserverItem& item : items) {
        const auto found = std::find_if(m_childResponders.begin(), m_childResponders.end(),
                                        [&](const auto& child) { return child->url() == item.url; });
        if (found == m_childResponders.end()) {
            continue;
        }
        qCDebug(lcDirectoryObserver).noquote()
            << QStringLiteral("Stopping child responder for ") + debugText(item);
        std::unique_ptr<SubdirectoryObserver> child = std::move(*found);
        m_childResponders.erase(found);
        stopChild(std::move(child));
        matchedNumbers.insert(item.systemNumber);
    }
    QList<DirectoryObserverItem> rest;
    for (const DirectoryObserverItem& item : items) {
        if (!matchedNumbers.contains(item.systemNumber)) {
            rest.append(item);
        }
    }
    return rest;
}

} // namespace Vantrope
