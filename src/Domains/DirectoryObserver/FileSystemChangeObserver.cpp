// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileSystemChangeObserver.h"

#include "DirectoryObserverLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/URL.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sys/stat.h>
#include <vector>

namespace Vantrope {

namespace {

struct Entry {
    QString name;
    // As the listing gives it, which is how an unchanged entry is recognised without examining it.
    quint64 listedInode = 0;
    qint64 systemNumber = 0;
    qint64 identity = 0;
    quint64 size = 0;
    std::optional<qint64> modifiedMSecs; // absent when the entry was not examined
};

// Linux hands a freed inode number to the next new file at once, so a file deleted and another created
// within one pass would pass for a rename. The birth time tells the two apart where the file system
// keeps one.
qint64 identityOf(const struct statx& info)
{
    if (!(info.stx_mask & STATX_BTIME)) {
        return qint64(info.stx_ino);
    }
    const quint64 born = quint64(info.stx_btime.tv_sec) * 1000000000u + info.stx_btime.tv_nsec;
    return qint64(info.stx_ino ^ (born * 0x9E3779B97F4A7C15u));
}

// One level of the directory in the order the file system gives, "." and ".." left out. An entry that
// was remembered with content under the same name and inode is taken from memory: examining every
// entry of a large folder on each pass would cost more than the rest of the pass together. The price:
// a known file emptied in place is not noticed, and stays known.
std::optional<std::vector<Entry>>
listDirectory(const QString& path, const QHash<QString, FileSystemChangeObserver::KnownEntry>& known)
{
    DIR* directory = ::opendir(QFile::encodeName(path).constData());
    if (!directory) {
        return std::nullopt;
    }
    const int descriptor = ::dirfd(directory);
    std::vector<Entry> entries;
    entries.reserve(size_t(known.size()) + 16);
    bool failed = false;
    while (true) {
        errno = 0;
        const dirent* found = ::readdir(directory);
        if (!found) {
            failed = errno != 0;
            break;
        }
        const char* name = found->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) {
            continue;
        }
        Entry entry;
        entry.name = QFile::decodeName(name);
        entry.listedInode = quint64(found->d_ino);
        const auto remembered = known.constFind(entry.name);
        if (remembered != known.constEnd() && remembered->listedInode == entry.listedInode &&
            remembered->size != 0) {
            entry.systemNumber = remembered->systemNumber;
            entry.identity = remembered->identity;
            entry.size = remembered->size;
            entries.push_back(std::move(entry));
            continue;
        }
        struct statx info {};
        if (::statx(descriptor, name, AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_SIZE | STATX_MTIME | STATX_BTIME,
                    &info) == 0) {
            entry.systemNumber = qint64(info.stx_ino);
            entry.identity = identityOf(info);
            entry.size = quint64(info.stx_size);
            entry.modifiedMSecs = qint64(info.stx_mtime.tv_sec) * 1000 + info.stx_mtime.tv_nsec / 1000000;
        } else {
            entry.systemNumber = DirectoryObserverItem::fallbackSystemNumber(entry.name);
            entry.identity = entry.systemNumber;
        }
        entries.push_back(std::move(entry));
    }
    ::closedir(directory);
    if (failed) {
        return std::nullopt;
    }
    return entries;
}

} // namespace

FileSystemChangeObserver::FileSystemChangeObserver(const QUrl& url, qsizetype onChangeFileLimit,
                                                   Clock::Duration minimumDelay, Clock& clock,
                                                   DirectoryWatcher& watcher)
    : m_url(url)
    , m_path(QDir::cleanPath(url.toLocalFile()))
    , m_onChangeFileLimit(onChangeFileLimit)
    , m_watcher(watcher)
    , m_diffOperationThrottler(minimumDelay, DispatchQueue::main(), clock)
{}

FileSystemChangeObserver::~FileSystemChangeObserver() = default;

bool FileSystemChangeObserver::start()
{
    if (m_watch) {
        qCDebug(lcDirectoryObserver)
            << "Attempted to start directory observer while it's already running, silently returning";
        return true;
    }
    // Capturing `this` is safe: the watch and the throttler are members, and neither runs anything
    // once it is destroyed.
    auto watch = m_watcher.watch(
        m_path, [this] { m_diffOperationThrottler.throttle([this] { performDiffOperation(); }); });
    if (!watch) {
        qCWarning(lcDirectoryObserver).noquote()
            << QStringLiteral("Failed to start monitoring ") + m_url.toString();
        qCDebug(lcDirectoryObserver).noquote() << watch.error().description();
        return false;
    }
    m_watch = std::move(*watch);
    performDiffOperation();
    return true;
}

void FileSystemChangeObserver::stop()
{
    if (!m_watch) {
        qCDebug(lcDirectoryObserver) << "Attempted to stop observer while there was no instance running";
        return;
    }
    m_diffOperationThrottler.cancel();
    m_lastItemNames.clear();
    m_lastItemSystemFileNumbers.clear();
    m_isFirstOperation = true;
    m_watch.reset();
}

void FileSystemChangeObserver::performDiffOperation()
{
    ++m_passCount;
    const std::optional<std::vector<Entry>> entries = listDirectory(m_path, m_lastItemNames);
    if (!entries) {
        handleListingFailure();
        return;
    }

    const auto rememberAll = [&](bool includeEmpty) {
        m_lastItemSystemFileNumbers.clear();
        m_lastItemNames.clear();
        m_lastItemSystemFileNumbers.reserve(qsizetype(entries->size()));
        m_lastItemNames.reserve(qsizetype(entries->size()));
        for (const Entry& entry : *entries) {
            if (includeEmpty || entry.size != 0) {
                m_lastItemSystemFileNumbers.insert(entry.identity);
                m_lastItemNames.insert(entry.name,
                                       {entry.listedInode, entry.systemNumber, entry.identity, entry.size});
            }
        }
    };

    if (m_isFirstOperation) {
        m_isFirstOperation = false;
        rememberAll(true);
        return;
    }

    const QString prefix = m_path.endsWith(QLatin1Char('/')) ? m_path : m_path + QLatin1Char('/');
    // Only what is reported becomes a full item; the URL and the attribute read cost too much for
    // every entry of a large folder.
    const auto makeItem = [&](const Entry& entry) {
        DirectoryObserverItem item;
        item.url = QUrl::fromLocalFile(prefix + entry.name);
        item.name = entry.name;
        item.size = entry.size;
        item.systemNumber = entry.systemNumber;
        // New entries are always examined; only a vanished one has no attributes.
        if (entry.modifiedMSecs) {
            item.modificationDate = QDateTime::fromMSecsSinceEpoch(*entry.modifiedMSecs, Qt::UTC);
            item.isQuarantined = URL::isQuarantined(item.url);
        } else {
            item.modificationDate = QDateTime::currentDateTimeUtc();
        }
        return item;
    };

    Items newItems;
    for (const Entry& entry : *entries) {
        const bool knownNumber = m_lastItemSystemFileNumbers.contains(entry.identity);
        const bool knownName = m_lastItemNames.contains(entry.name);
        if (!knownNumber && !knownName) {
            DirectoryObserverItem item = makeItem(entry);
            if (item.isQuarantined) {
                m_quarantinedItemSystemFileNumbers.insert(entry.identity);
            }
            newItems.append(std::move(item));
        } else if (knownNumber && !knownName) {
            // A rename: news only when a download takes its final name.
            if (m_quarantinedItemSystemFileNumbers.remove(entry.identity)) {
                newItems.append(makeItem(entry));
            }
        }
    }

    // Empty files stay out of memory, so they are seen again once they have content.
    rememberAll(false);

    if (newItems.isEmpty()) {
        return;
    }
    // What lies beyond the limit is dropped for good: the memory already counts it as known.
    const Items reported = newItems.first(std::min(newItems.size(), m_onChangeFileLimit));
    if (lcDirectoryObserver().isDebugEnabled()) {
        QString list;
        for (const DirectoryObserverItem& item : reported) {
            QDebug(&list).nospace() << item << '\n';
        }
        if (newItems.size() > reported.size()) {
            list += QStringLiteral("(%1 more not reported)").arg(newItems.size() - reported.size());
        }
        qCDebug(lcDirectoryObserver).noquote() << QStringLiteral("Determined new items: \n") + list;
    }
    if (m_onAdded) {
        // A copy, since the callback may end up destroying this observer.
        const Callback onAdded = m_onAdded;
        onAdded(reported);
    }
}

void FileSystemChangeObserver::handleListingFailure()
{
    if (!QFileInfo::exists(m_path)) {
        qCInfo(lcDirectoryObserver).noquote() << QStringLiteral("Detected that directory ") + m_path +
                                                     QStringLiteral(" is removed, proceeding to remove it");
        if (m_onRemoved) {
            const Callback onRemoved = m_onRemoved;
            onRemoved({DirectoryObserverItem::fromUrl(m_url)});
        }
        return;
    }
    qCWarning(lcDirectoryObserver).noquote()
        << QStringLiteral("Failed to retrieve contents of dir ") + m_url.toString();
}

} // namespace Vantrope
