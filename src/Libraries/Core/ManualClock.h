// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Clock.h"

#include <QMutex>
#include <vector>

namespace Vantrope {

// A clock that stands still until told to move. Scheduled work runs, in due order and synchronously on
// its queue, while `advance()` passes its time.
class ManualClock final : public Clock {
public:
    explicit ManualClock(const QDateTime& start = QDateTime(QDate(2026, 1, 1), QTime(12, 0), Qt::UTC));

    TimePoint now() const override;
    QDateTime currentDateTime() const override;
    void schedule(Duration delay, DispatchQueue& queue, DispatchQueue::Work work) override;

    void advance(Duration duration);
    int pendingCount() const;

private:
    struct Timer {
        TimePoint due;
        quint64 order;
        DispatchQueue* queue;
        DispatchQueue::Work work;
    };

    mutable QMutex m_mutex;
    TimePoint m_now; // starts at the clock's zero
    QDateTime m_start;
    quint64 m_nextOrder = 0;
    std::vector<Timer> m_timers;
};

} // namespace Vantrope
