// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11DragSourceTracker.h"

#include "X11Properties.h"

#include <QGuiApplication>
#include <xcb/xcb.h>

namespace Vantrope {

X11DragSourceTracker* X11DragSourceTracker::instance()
{
    static X11DragSourceTracker* tracker = []() -> X11DragSourceTracker* {
        if (!X11Properties::connection()) {
            return nullptr;
        }
        // Lives as long as the process: the application keeps a plain pointer to its filters.
        auto* made = new X11DragSourceTracker;
        qGuiApp->installNativeEventFilter(made);
        return made;
    }();
    return tracker;
}

X11DragSourceTracker::X11DragSourceTracker()
    : m_enter(X11Properties::atom("XdndEnter"))
    , m_position(X11Properties::atom("XdndPosition"))
    , m_drop(X11Properties::atom("XdndDrop"))
    , m_leave(X11Properties::atom("XdndLeave"))
{}

bool X11DragSourceTracker::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) {
        return false;
    }
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    if (client->format != 32) {
        return false;
    }
    if (client->type == m_enter || client->type == m_position || client->type == m_drop) {
        // Every XDND message from a source carries its window first.
        m_sourceWindow.store(client->data.data32[0]);
    } else if (client->type == m_leave) {
        m_sourceWindow.store(0);
    }
    return false;
}

} // namespace Vantrope
