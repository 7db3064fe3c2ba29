// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// Where the session bus is. With DBUS_SESSION_BUS_ADDRESS unset, libdbus and GIO "autolaunch" a bus
// daemon of their own, which outlives this process and serves nobody else; the user's runtime folder is
// the one other place a session bus listens.
class SessionBusAddress final {
public:
    // Call before anything touches D-Bus: an unset DBUS_SESSION_BUS_ADDRESS becomes the bus socket in
    // $XDG_RUNTIME_DIR, whether or not something listens there, so nothing gets autolaunched.
    static void preventAutolaunch();
    // Where this process looks for the bus, in words.
    static QString describe();
};

} // namespace Vantrope
