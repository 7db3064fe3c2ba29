// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DispatchQueue.h"

#include <chrono>
#include <QDateTime>

namespace Vantrope {

// The time that time-driven code reads and waits on. Tests hand in a ManualClock and move time by hand.
class Clock {
public:
    using Duration = std::chrono::nanoseconds;
    // Monotonic: only differences between two readings mean anything.
    using TimePoint = std::chrono::steady_clock::time_point;

    virtual ~Clock() = default;

    virtual TimePoint now() const = 0;
    // Wall-clock time, for what is stored or shown.
    virtual QDateTime currentDateTime() const = 0;
    // Runs `work` on `queue` once `delay` has passed on this clock.
    virtual void schedule(Duration delay, DispatchQueue& queue, DispatchQueue::Work work) = 0;

    static Clock& system();
};

} // namespace Vantrope
