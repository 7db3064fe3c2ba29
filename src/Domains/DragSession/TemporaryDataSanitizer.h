// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "Libraries/Core/DispatchQueue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

class Preferences;

// Clears what the program wrote for shelves that no longer need it: text turned into files, received
// promises, archives made for uploads, and the thumbnails of shelves no longer in the recent list.
// What an open or recent shelf holds stays, and so does anything another process is still writing.
class TemporaryDataSanitizer final {
public:
    struct Result {
        int removed = 0;
        int failed = 0;
        // Kept because a process has them open for writing or wrote them a moment ago.
        int busy = 0;
    };

    // Runs at most this often at start-up.
    static constexpr std::chrono::hours interval{2};
    // A file written this recently may still be growing, whoever writes it.
    static constexpr std::chrono::seconds settleTime{60};

    TemporaryDataSanitizer(QStringList directories, Preferences& preferences, Clock& clock);

    // The folders the program keeps under its temporary directory for shelf content.
    static QStringList reservedDirectories();

    const QStringList& directories() const { return m_directories; }

    // True when no run is stored, or the last one lies more than `interval` back.
    bool shouldSanitize() const;

    // What must survive a run, read on the main thread before it starts: a shelf opened during the run
    // is not protected by it, and need not be, as its content is new.
    struct Protected {
        QList<QUrl> urls;
        // Shelves in the recent list, whose thumbnails stay.
        QSet<QString> storedShelves;
        QString snapshotDirectory;
    };
    using Completion = std::function<void(const Result&)>;

    // At start-up: runs on a background queue unless the last run is recent. `done` runs on the main
    // queue, after the time of the run is stored, and only when it ran.
    void startIfDue(Protected kept, Completion done = {});
    // The user's purge: runs whenever asked.
    void purge(Protected kept, Completion done = {});

    // Deletes each direct entry of the directories that neither is nor holds a protected URL. Slow, and
    // safe on any thread.
    Result sanitizeDirectories(const QList<QUrl>& protectedUrls) const;

    // Deletes the thumbnails in `snapshotDirectory` of shelves not among `storedIdentifiers`.
    Result purgeSnapshots(const QString& snapshotDirectory, const QSet<QString>& storedIdentifiers) const;

private:
    // `roots` are where writers are looked for.
    Result removeEntries(const QStringList& paths, const QStringList& roots) const;

    QStringList m_directories;
    Preferences& m_preferences;
    Clock& m_clock;
    // Gone with this object, so that an answer posted to the main queue afterwards does nothing.
    std::shared_ptr<int> m_lifetime = std::make_shared<int>();
    // Last: destroying it waits for a run in progress, which uses the members above.
    DispatchQueue m_queue{QStringLiteral("temporary-data-sanitizer")};
};

} // namespace Vantrope
