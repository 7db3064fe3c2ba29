// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PasteboardWatchDog.h"

namespace Vantrope {

PasteboardWatchDog::PasteboardWatchDog(ChangeCountReader pasteboard, Clock& clock, DispatchQueue& queue)
    : m_pasteboard(std::move(pasteboard))
    , m_clock(clock)
    , m_queue(queue)
    , m_self(std::make_shared<PasteboardWatchDog*>(this))
{}

PasteboardWatchDog::~PasteboardWatchDog() = default;

void PasteboardWatchDog::setPolling(bool polling)
{
    m_polling = polling;
    ++m_timerGeneration;
    if (polling) {
        m_changeCount = m_pasteboard();
        scheduleTick();
    }
}

void PasteboardWatchDog::checkForChangesInPasteboard()
{
    if (!m_polling) {
        return;
    }
    if (m_pasteboard() != m_changeCount) {
        if (m_updateHandler) {
            m_updateHandler();
        }
        m_changeCount = m_pasteboard();
    }
}

void PasteboardWatchDog::scheduleTick()
{
    m_clock.schedule(pollInterval, m_queue,
                     [weak = std::weak_ptr<PasteboardWatchDog*>(m_self), generation = m_timerGeneration] {
                         const auto self = weak.lock();
                         if (!self || (*self)->m_timerGeneration != generation) {
                             return;
                         }
                         (*self)->checkForChangesInPasteboard();
                         // The handler may have stopped or restarted polling.
                         if ((*self)->m_timerGeneration == generation) {
                             (*self)->scheduleTick();
                         }
                     });
}

} // namespace Vantrope
