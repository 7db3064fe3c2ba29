// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Throttler.h"

namespace Vantrope {

Throttler::Throttler(Clock::Duration minimumDelay, DispatchQueue& queue, Clock& clock)
    : m_minimumDelay(minimumDelay)
    , m_queue(queue)
    , m_clock(clock)
    , m_state(std::make_shared<State>())
{}

Throttler::~Throttler()
{
    QMutexLocker lock(&m_state->mutex);
    m_state->alive = false;
    m_state->pending = nullptr;
}

void Throttler::throttle(DispatchQueue::Work work)
{
    quint64 generation;
    {
        QMutexLocker lock(&m_state->mutex);
        m_state->pending = std::move(work);
        if (m_state->scheduled) {
            return;
        }
        m_state->scheduled = true;
        generation = m_state->generation;
    }
    // The timer holds the state, not the throttler, so a throttler destroyed meanwhile is harmless.
    std::weak_ptr<State> weakState = m_state;
    m_clock.schedule(m_minimumDelay, m_queue, [weakState, generation] {
        auto state = weakState.lock();
        if (!state) {
            return;
        }
        DispatchQueue::Work work;
        {
            QMutexLocker lock(&state->mutex);
            if (!state->alive || state->generation != generation || !state->scheduled) {
                return;
            }
            state->scheduled = false;
            work = std::move(state->pending);
            state->pending = nullptr;
        }
        if (work) {
            work();
        }
    });
}

void Throttler::cancel()
{
    QMutexLocker lock(&m_state->mutex);
    ++m_state->generation;
    m_state->scheduled = false;
    m_state->pending = nullptr;
}

bool Throttler::hasPendingWork() const
{
    QMutexLocker lock(&m_state->mutex);
    return m_state->scheduled;
}

} // namespace Vantrope
