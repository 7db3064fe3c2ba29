// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DispatchGroup.h"

#include "Logging.h"

namespace Vantrope {

void DispatchGroup::enter()
{
    QMutexLocker lock(&m_mutex);
    ++m_count;
}

void DispatchGroup::leave()
{
    std::vector<Waiter> ready;
    {
        QMutexLocker lock(&m_mutex);
        if (m_count == 0) {
            qCWarning(lcCore) << "Unbalanced leave() on a dispatch group";
            return;
        }
        if (--m_count == 0) {
            ready.swap(m_waiters);
        }
    }
    for (Waiter& waiter : ready) {
        waiter.queue->async(std::move(waiter.work));
    }
}

void DispatchGroup::notify(DispatchQueue& queue, DispatchQueue::Work work)
{
    {
        QMutexLocker lock(&m_mutex);
        if (m_count > 0) {
            m_waiters.push_back({&queue, std::move(work)});
            return;
        }
    }
    queue.async(std::move(work));
}

int DispatchGroup::count() const
{
    QMutexLocker lock(&m_mutex);
    return m_count;
}

} // namespace Vantrope
