// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ManualClock.h"

#include <algorithm>

namespace Vantrope {

ManualClock::ManualClock(const QDateTime& start)
    : m_start(start)
{}

Clock::TimePoint ManualClock::now() const
{
    QMutexLocker lock(&m_mutex);
    return m_now;
}

QDateTime ManualClock::currentDateTime() const
{
    QMutexLocker lock(&m_mutex);
    return m_start.addMSecs(
        std::chrono::duration_cast<std::chrono::milliseconds>(m_now.time_since_epoch()).count());
}

void ManualClock::schedule(Duration delay, DispatchQueue& queue, DispatchQueue::Work work)
{
    QMutexLocker lock(&m_mutex);
    m_timers.push_back({m_now + std::max(Duration::zero(), delay), m_nextOrder++, &queue, std::move(work)});
}

void ManualClock::advance(Duration duration)
{
    TimePoint target;
    {
        QMutexLocker lock(&m_mutex);
        target = m_now + duration;
    }
    for (;;) {
        Timer next;
        {
            QMutexLocker lock(&m_mutex);
            auto due = std::min_element(m_timers.begin(), m_timers.end(), [](const Timer& a, const Timer& b) {
                return a.due < b.due || (a.due == b.due && a.order < b.order);
            });
            if (due == m_timers.end() || due->due > target) {
                m_now = target;
                return;
            }
            next = std::move(*due);
            m_timers.erase(due);
            m_now = std::max(m_now, next.due);
        }
        next.queue->sync(next.work);
    }
}

int ManualClock::pendingCount() const
{
    QMutexLocker lock(&m_mutex);
    return static_cast<int>(m_timers.size());
}

} // namespace Vantrope
