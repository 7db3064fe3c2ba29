// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryChangeResponder.h"
#include "FileSystemChangeObserver.h"

#include <memory>
#include <vector>

namespace Vantrope {

// Observes one directory of a watched folder's tree and the directories below it that the top allows,
// and passes new items upward. A new directory that is seen gets an observer of its own.
class SubdirectoryObserver final : public DirectoryChangeResponder {
public:
    static constexpr qsizetype changeFileLimit = 50;
    static constexpr std::chrono::milliseconds changeDelay{400};

    // `parentResponder` owns this observer, or outlives it.
    SubdirectoryObserver(const QUrl& url, DirectoryChangeResponder* parentResponder, Clock& clock,
                         DirectoryWatcher& watcher);
    ~SubdirectoryObserver() override;

    QUrl url() const override { return m_changeObserver.url(); }
    QList<DirectoryChangeResponder*> childResponders() const override;
    void start() override;
    void stop() override;
    bool shouldObserve(const QUrl& url) override;
    void didStartResponder(DirectoryChangeResponder* child) override;
    void didStopResponder(DirectoryChangeResponder* child) override;
    bool handle(const QList<DirectoryObserverItem>& items, bool removed) override;

    bool isObserving() const { return m_changeObserver.isRunning(); }
    const FileSystemChangeObserver& changeObserver() const { return m_changeObserver; }

private:
    // Not hidden, a directory (a package with an extension included), and directly inside this one.
    bool mayObserve(const QUrl& candidate) const;
    void handleAddedItems(const QList<DirectoryObserverItem>& items);
    QList<DirectoryObserverItem> handleRemovedItems(const QList<DirectoryObserverItem>& items);
    void stopChild(std::unique_ptr<SubdirectoryObserver> child);

    DirectoryChangeResponder* m_parentResponder;
    Clock& m_clock;
    DirectoryWatcher& m_watcher;
    std::vector<std::unique_ptr<SubdirectoryObserver>> m_childResponders;
    FileSystemChangeObserver m_changeObserver;
};

} // namespace Vantrope
