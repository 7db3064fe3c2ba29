// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "GlobalMouseEvent.h"

#include <functional>
#include <QPointF>
#include <QString>
#include <vector>

namespace Vantrope {

// What the drag recognizer needs of the window system: the left-button drags and releases of every
// application, where the pointer is, how often a drag has taken the drag pasteboard, and which
// application owns which window. A backend for the session at hand is picked at run time.
class DragMonitor {
public:
    using Handler = std::function<void(const GlobalMouseEvent&)>;
    using MonitorToken = quint64;

    // One window of a full listing.
    struct WindowEntry {
        quint64 windowNumber = 0;
        // Empty when nothing names the owner.
        QString ownerName;
        // A panel or dock rather than an application window.
        bool isDock = false;
    };

    DragMonitor() = default;
    virtual ~DragMonitor();
    DragMonitor(const DragMonitor&) = delete;
    DragMonitor& operator=(const DragMonitor&) = delete;

    // Handlers run on the main thread in the order they were added, for the event types in `mask`.
    MonitorToken addGlobalMonitor(GlobalMouseEvent::Types mask, Handler handler);
    void removeMonitor(MonitorToken token);

    // False when this session cannot show us other applications' drags; the reason is user-visible text
    // for the settings.
    virtual bool isAvailable() const = 0;
    virtual QString unavailableReason() const = 0;

    // The pointer position now, in points with a bottom-left origin.
    virtual QPointF mouseLocation() = 0;
    // Grows each time a drag takes the drag pasteboard, even when the same application takes it again.
    virtual qint64 dragPasteboardChangeCount() = 0;
    // Every window the display knows of. Expensive: several requests per window.
    virtual std::vector<WindowEntry> windowList() = 0;

protected:
    void deliver(const GlobalMouseEvent& event);
    bool isMonitored(GlobalMouseEvent::Type type) const { return m_mask.testFlag(type); }

private:
    struct Monitor {
        MonitorToken token;
        GlobalMouseEvent::Types mask;
        Handler handler;
    };

    void updateMask();

    std::vector<Monitor> m_monitors;
    GlobalMouseEvent::Types m_mask;
    MonitorToken m_nextToken = 1;
    int m_delivering = 0;
};

} // namespace Vantrope
