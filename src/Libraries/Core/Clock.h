#pragma once

#include "DispatchQueue.h"

#include <QDateTime>

namespace Vantrope {

// The time that time-driven code reads and waits on. Tests hand in a ManualClock and move time by hand.
class Clock {
public:
    virtual ~Clock() = default;

    // Seconds on a monotonic scale; only differences mean anything.
    virtual double now() const = 0;
    // Wall-clock time, for what is stored or shown.
    virtual QDateTime currentDateTime() const = 0;
    // Runs `work` on `queue` once `seconds` have passed on this clock.
    virtual void schedule(double seconds, DispatchQueue& queue, DispatchQueue::Work work) = 0;

    static Clock& system();
};

} // namespace Vantrope
