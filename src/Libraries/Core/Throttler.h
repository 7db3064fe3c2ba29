// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Clock.h"
#include "DispatchQueue.h"

#include <memory>
#include <QMutex>

namespace Vantrope {

// Coalesces bursts of work. The first call after a run schedules a run `minimumDelay` later;
// calls until then only replace the closure, so the last one given runs, and two runs are never closer
// than `minimumDelay`. Safe to call from any thread; the closure runs on `queue`.
class Throttler final {
public:
    Throttler(Clock::Duration minimumDelay, DispatchQueue& queue, Clock& clock);
    ~Throttler();
    Throttler(const Throttler&) = delete;
    Throttler& operator=(const Throttler&) = delete;

    void throttle(DispatchQueue::Work work);
    // Drops what is pending; a closure already running finishes.
    void cancel();

    Clock::Duration minimumDelay() const { return m_minimumDelay; }
    bool hasPendingWork() const;

private:
    struct State {
        QMutex mutex;
        DispatchQueue::Work pending;
        quint64 generation = 0;
        bool scheduled = false;
        bool alive = true;
    };

    Clock::Duration m_minimumDelay;
    DispatchQueue& m_queue;
    Clock& m_clock;
    std::shared_ptr<State> m_state;
};

} // namespace Vantrope
