// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Clock.h"

namespace Vantrope {

namespace {

class SystemClock final : public Clock {
public:
    TimePoint now() const override { return std::chrono::steady_clock::now(); }
    QDateTime currentDateTime() const override { return QDateTime::currentDateTimeUtc(); }
    void schedule(Duration delay, DispatchQueue& queue, DispatchQueue::Work work) override
    {
        queue.asyncAfter(delay, std::move(work));
    }
};

} // namespace

Clock& Clock::system()
{
    static SystemClock clock;
    return clock;
}

} // namespace Vantrope
