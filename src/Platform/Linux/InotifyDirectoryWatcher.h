// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryWatcher.h"

#include <QObject>
#include <unordered_map>
#include <vector>

class QSocketNotifier;

namespace Vantrope {

// Directory watches on one inotify instance read on the thread that made it. Events are read in batches a
// short moment after the first one, so that a long copy wakes the thread a few dozen times a second rather
// than once per file.
class InotifyDirectoryWatcher final : public QObject, public DirectoryWatcher {
    Q_OBJECT
public:
    explicit InotifyDirectoryWatcher(QObject* parent = nullptr);
    ~InotifyDirectoryWatcher() override;

    std::expected<std::unique_ptr<Watch>, Error> watch(const QString& directoryPath,
                                                       Signal onChange) override;

private:
    class Subscription;
    struct Subscriber {
        quint64 id = 0;
        Signal signal;
    };

    void readEvents();
    void unsubscribe(int descriptor, quint64 id);
    void signalSubscribers(const std::vector<int>& descriptors);

    int m_fd = -1;
    QString m_initError;
    QSocketNotifier* m_notifier = nullptr;
    // By watch descriptor: the kernel gives one descriptor per directory, whoever asks.
    std::unordered_map<int, std::vector<Subscriber>> m_subscribers;
    quint64 m_nextId = 1;
};

} // namespace Vantrope
