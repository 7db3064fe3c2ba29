// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11WindowHints.h"

#include "X11Properties.h"

#include <QList>
#include <QWindow>
#include <xcb/xcb.h>

namespace Vantrope {

namespace {

constexpr quint32 allDesktopsValue = 0xFFFFFFFF;
constexpr quint32 stateRemove = 0;
constexpr quint32 stateAdd = 1;

quint32 currentDesktop()
{
    const auto values =
        X11Properties::read32(X11Properties::rootWindow(), X11Properties::atom("_NET_CURRENT_DESKTOP"));
    return values && !values->isEmpty() ? values->first() : 0;
}

} // namespace

void X11WindowHints::apply(QWindow& window, bool allDesktops)
{
    if (!X11Properties::connection()) {
        return;
    }
    const quint32 id = static_cast<quint32>(window.winId());
    const quint32 state = X11Properties::atom("_NET_WM_STATE");
    const quint32 sticky = X11Properties::atom("_NET_WM_STATE_STICKY");
    const quint32 skipTaskbar = X11Properties::atom("_NET_WM_STATE_SKIP_TASKBAR");
    const quint32 skipPager = X11Properties::atom("_NET_WM_STATE_SKIP_PAGER");
    const quint32 desktop = allDesktops ? allDesktopsValue : currentDesktop();

    if (!window.isVisible()) {
        // Before mapping, the window manager reads the properties; Qt merges its own states into ours.
        QList<quint32> states = X11Properties::read32(id, state).value_or(QList<quint32>());
        states.removeAll(sticky);
        for (const quint32 atom : {skipTaskbar, skipPager}) {
            if (!states.contains(atom)) {
                states.append(atom);
            }
        }
        if (allDesktops) {
            states.append(sticky);
        }
        X11Properties::write32(id, state, XCB_ATOM_ATOM, states);
        X11Properties::write32(id, X11Properties::atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, {desktop});
    } else {
        // A mapped window's state belongs to the window manager: ask it.
        X11Properties::sendToRoot(id, state, {allDesktops ? stateAdd : stateRemove, sticky, 0, 1});
        X11Properties::sendToRoot(id, state, {stateAdd, skipTaskbar, skipPager, 1});
        X11Properties::sendToRoot(id, X11Properties::atom("_NET_WM_DESKTOP"), {desktop, 1});
    }
    X11Properties::flush();
}

bool X11WindowHints::hasCompositingManager()
{
    xcb_connection_t* connection = X11Properties::connection();
    if (!connection) {
        return true;
    }
    // Multi-screen X setups (one root per monitor) are long gone; screen 0 is the display.
    const auto cookie = xcb_get_selection_owner(connection, X11Properties::atom("_NET_WM_CM_S0"));
    xcb_get_selection_owner_reply_t* reply = xcb_get_selection_owner_reply(connection, cookie, nullptr);
    const bool owned = reply && reply->owner != XCB_NONE;
    std::free(reply);
    return owned;
}

} // namespace Vantrope
