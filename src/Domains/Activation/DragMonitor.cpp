// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragMonitor.h"

#include <algorithm>

namespace Vantrope {

DragMonitor::~DragMonitor() = default;

DragMonitor::MonitorToken DragMonitor::addGlobalMonitor(GlobalMouseEvent::Types mask, Handler handler)
{
    const MonitorToken token = m_nextToken++;
    m_monitors.push_back({token, mask, std::move(handler)});
    updateMask();
    return token;
}

void DragMonitor::removeMonitor(MonitorToken token)
{
    const auto found = std::find_if(m_monitors.begin(), m_monitors.end(),
                                    [token](const Monitor& monitor) { return monitor.token == token; });
    if (found == m_monitors.end()) {
        return;
    }
    if (m_delivering > 0) {
        // A handler may remove a monitor while the list is walked; it is swept after the walk.
        found->handler = nullptr;
        found->mask = {};
    } else {
        m_monitors.erase(found);
    }
    updateMask();
}

void DragMonitor::deliver(const GlobalMouseEvent& event)
{
    ++m_delivering;
    // Indexes, not iterators: a handler may add a monitor.
    for (std::size_t i = 0; i < m_monitors.size(); ++i) {
        if (m_monitors[i].mask.testFlag(event.type) && m_monitors[i].handler) {
            // A copy, so that a handler removing itself does not destroy the function it runs in.
            const Handler handler = m_monitors[i].handler;
            handler(event);
        }
    }
    if (--m_delivering == 0) {
        std::erase_if(m_monitors, [](const Monitor& monitor) { return !monitor.handler; });
    }
}

void DragMonitor::updateMask()
{
    m_mask = {};
    for (const Monitor& monitor : m_monitors) {
        m_mask |= monitor.mask;
    }
}

} // namespace Vantrope
