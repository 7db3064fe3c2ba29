// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryObserver.h"
#include "Domains/DirectoryObserver/DirectoryObserverCoordinatorDataSource.h"
#include "Libraries/Core/ManualClock.h"
#include "support/FakeDirectoryWatcher.h"
#include "support/TestSupport.h"

#include <functional>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sys/xattr.h>

namespace Vantrope::Test {

// A folder to watch inside a fresh temporary one, a ManualClock and a fake watcher.
struct FolderFixture {
    explicit FolderFixture(const QString& name = QStringLiteral("watched"))
        : folder(root.path() + QLatin1Char('/') + name)
    {
        QDir().mkpath(folder);
    }

    QString path(const QString& relative) const { return folder + QLatin1Char('/') + relative; }
    bool write(const QString& relative, const QByteArray& data = "content") const
    {
        return writeFile(path(relative), data);
    }

    QTemporaryDir root;
    QString folder;
    ManualClock clock;
    FakeDirectoryWatcher watcher;
};

// Shelves as the root coordinator would keep them; a shelf's identifier is its index.
struct TestShelves final : DirectoryObserverCoordinatorDataSource {
    struct Shelf {
        QList<QUrl> files;
        QStringList messages;
        bool open = true;
    };
    QList<Shelf> shelves;

    bool appendFiles(const QString& shelf, const QList<QUrl>& files) override
    {
        if (shelves[shelf.toInt()].open) {
            shelves[shelf.toInt()].files.append(files);
        }
        return shelves[shelf.toInt()].open;
    }
    std::optional<QString> createShelf(const QList<QUrl>& files) override
    {
        shelves.append({files, {}, true});
        return QString::number(shelves.size() - 1);
    }
    void showMessage(const QString& shelf, const QString& text) override
    {
        shelves[shelf.toInt()].messages.append(text);
    }
};

// Runs the listings the throttle holds and what they post to the main queue, until nothing is left.
inline void settle(ManualClock& clock)
{
    for (int round = 0; round < 20; ++round) {
        QCoreApplication::sendPostedEvents();
        if (clock.pendingCount() == 0) {
            return;
        }
        clock.advance(std::chrono::milliseconds(400));
    }
}

// Signals every watched folder, as the kernel does after a test step's file operations touched them,
// and lets the listings run. True when one ran.
inline bool runPass(ManualClock& clock, FakeDirectoryWatcher& watcher, const std::function<quint64()>& passes)
{
    const quint64 before = passes();
    watcher.fireAll();
    settle(clock);
    return passes() > before;
}

// Listings run by the change observers now in a watched folder's tree; it drops when a subtree goes.
inline quint64 treePasses(const DirectoryObserver& observer)
{
    const SubdirectoryObserver& root = observer.subdirectoryObserver();
    quint64 passes = root.changeObserver().passCount();
    const QList<DirectoryChangeResponder*> descendants = root.descendants();
    for (DirectoryChangeResponder* responder : descendants) {
        passes += static_cast<SubdirectoryObserver*>(responder)->changeObserver().passCount();
    }
    return passes;
}

// Marks a file the way curl and wget mark a download. False where the file system keeps no user
// attributes.
inline bool markAsDownload(const QString& path)
{
    const QByteArray origin("https://downloads.example.org/file");
    return ::setxattr(QFile::encodeName(path).constData(), "user.xdg.origin.url", origin.constData(),
                      size_t(origin.size()), 0) == 0;
}

} // namespace Vantrope::Test
