// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DispatchQueue.h"

#include <QMutex>
#include <vector>

namespace Vantrope {

// Counts work in flight; the notifications run on their queues once every `enter()` has had its `leave()`.
class DispatchGroup final {
public:
    void enter();
    void leave();
    // Runs at once (asynchronously) when nothing is in flight.
    void notify(DispatchQueue& queue, DispatchQueue::Work work);
    int count() const;

private:
    struct Waiter {
        DispatchQueue* queue;
        DispatchQueue::Work work;
    };

    mutable QMutex m_mutex;
    int m_count = 0;
    std::vector<Waiter> m_waiters;
};

} // namespace Vantrope
