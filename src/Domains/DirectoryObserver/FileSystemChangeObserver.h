// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverItem.h"
#include "DirectoryWatcher.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/Core/Throttler.h"

#include <functional>
#include <memory>
#include <QHash>
#include <QList>
#include <QSet>
#include <QUrl>

namespace Vantrope {

// Watches one directory, not its subdirectories, and reports what is truly new in it. A file is known by
// its inode number (with its birth time) and by its name at once: a rename inside the directory or a save
// that replaces a file is not new. A download (a quarantined file) is reported again once it is renamed to
// its final name, empty files are not remembered until they have content, and what lies in the directory when
// observation starts is never reported. Main thread only.
class FileSystemChangeObserver final {
public:
    using Items = QList<DirectoryObserverItem>;
    using Callback = std::function<void(const Items&)>;

    FileSystemChangeObserver(const QUrl& url, qsizetype onChangeFileLimit, Clock::Duration minimumDelay,
                             Clock& clock, DirectoryWatcher& watcher);
    ~FileSystemChangeObserver();
    FileSystemChangeObserver(const FileSystemChangeObserver&) = delete;
    FileSystemChangeObserver& operator=(const FileSystemChangeObserver&) = delete;

    QUrl url() const { return m_url; }
    qsizetype onChangeFileLimit() const { return m_onChangeFileLimit; }

    // New items, at most `onChangeFileLimit` per call.
    void setOnAdded(Callback callback) { m_onAdded = std::move(callback); }
    // The watched directory itself has gone: one item for it.
    void setOnRemoved(Callback callback) { m_onRemoved = std::move(callback); }

    // False only when the directory cannot be watched. Takes the baseline before it returns.
    bool start();
    void stop();
    bool isRunning() const { return m_watch != nullptr; }

    // Listings run since construction, failed ones included.
    quint64 passCount() const { return m_passCount; }

    // What a pass remembers of an entry besides its name.
    struct KnownEntry {
        quint64 listedInode = 0;
        qint64 systemNumber = 0;
        qint64 identity = 0;
        quint64 size = 0;
    };

private:
    void performDiffOperation();
    void handleListingFailure();

    QUrl m_url;
    QString m_path;
    Callback m_onAdded;
    Callback m_onRemoved;
    qsizetype m_onChangeFileLimit;
    bool m_isFirstOperation = true;
    DirectoryWatcher& m_watcher;
    // Present exactly while the observer runs.
    std::unique_ptr<DirectoryWatcher::Watch> m_watch;
    Throttler m_diffOperationThrottler;
    // Inode numbers mixed with birth times, so that a recycled inode number is not taken for a rename.
    QSet<qint64> m_lastItemSystemFileNumbers;
    QHash<QString, KnownEntry> m_lastItemNames;
    // Quarantined when first seen and not renamed since; survives stop() on purpose.
    QSet<qint64> m_quarantinedItemSystemFileNumbers;
    quint64 m_passCount = 0;
};

} // namespace Vantrope
