// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryChangeResponder.h"
#include "DirectoryObserverFilter.h"
#include "DirectoryObserverStatus.h"
#include "SubdirectoryObserver.h"

#include <functional>
#include <memory>
#include <optional>
#include <QObject>

namespace Vantrope {

// One watched folder at work. It owns the tree of observers below the folder, applies the user's rules
// and the fixed rules against unfinished files to what the tree reports, and hands the URLs that pass
// to `onChange`. Main thread only.
class DirectoryObserver final : public QObject, public DirectoryChangeResponder {
    Q_OBJECT
public:
    using Item = DirectoryObserverItem;
    using Status = DirectoryObserverStatus;
    using ChangeCallback = std::function<void(const QList<QUrl>&)>;

    // Bounds the descriptors and the listings one folder may cost.
    static constexpr int maximumNumberOfResponders = 300;

    DirectoryObserver(const QUrl& url, const QList<DirectoryObserverFilter>& filters,
                      bool observesNestedDirectories, const std::optional<QString>& identifier, Clock& clock,
                      DirectoryWatcher& watcher, QObject* parent = nullptr);
    ~DirectoryObserver() override;

    // Observers alive in the tree, the root included.
    int numberOfResponders() const { return m_numberOfResponders; }
    Status status() const { return m_status; }
    std::optional<QString> identifier() const { return m_identifier; }

    QList<DirectoryObserverFilter> filters() const { return m_filters; }
    void setFilters(const QList<DirectoryObserverFilter>& filters) { m_filters = filters; }
    bool caseSensitiveItemMatchers() const { return m_caseSensitiveItemMatchers; }
    void setCaseSensitiveItemMatchers(bool caseSensitive) { m_caseSensitiveItemMatchers = caseSensitive; }
    bool appendsToExistingShelf() const { return m_appendsToExistingShelf; }
    void setAppendsToExistingShelf(bool appends) { m_appendsToExistingShelf = appends; }
    // Takes effect with the next `restartIfNeeded()`.
    bool observesNestedDirectories() const { return m_observesNestedDirectories; }
    void setObservesNestedDirectories(bool observes) { m_observesNestedDirectories = observes; }
    // Called later on the main thread, never while a report is being handled.
    void setOnChange(ChangeCallback onChange) { m_onChange = std::move(onChange); }

    bool isRunning() const { return m_subdirectoryObserver->isObserving(); }
    const SubdirectoryObserver& subdirectoryObserver() const { return *m_subdirectoryObserver; }

    QUrl url() const override { return m_url; }
    QList<DirectoryChangeResponder*> childResponders() const override;
    void start() override;
    void stop() override;
    bool shouldObserve(const QUrl& url) override;
    void didStartResponder(DirectoryChangeResponder* child) override;
    void didStopResponder(DirectoryChangeResponder* child) override;
    bool handle(const QList<Item>& items, bool removed) override;

    // Rebuilds the tree after a change of options, running again if it ran before.
    void restartIfNeeded();
    // Checks that the folder is still there and readable, and stops the tree if it is not.
    void determineStatus();

Q_SIGNALS:
    void numberOfRespondersChanged(int numberOfResponders);
    void statusChanged(Vantrope::DirectoryObserverStatus status);

private:
    void resolveAddedItems(const QList<Item>& items);
    void stopTree();
    void updateNumberOfResponders();
    void setStatus(Status status);
    // Unfinished or hidden files, which no rule of the user's can let through.
    static bool isExcludedAlways(const Item& item);

    int m_numberOfResponders = 0;
    Status m_status = Status::unknown;
    QUrl m_url;
    std::optional<QString> m_identifier;
    QList<DirectoryObserverFilter> m_filters;
    bool m_caseSensitiveItemMatchers = false;
    bool m_appendsToExistingShelf = true;
    ChangeCallback m_onChange;
    bool m_observesNestedDirectories;
    Clock& m_clock;
    DirectoryWatcher& m_watcher;
    std::unique_ptr<SubdirectoryObserver> m_subdirectoryObserver;
};

} // namespace Vantrope
