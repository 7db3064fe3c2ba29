// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>

using xcb_connection_t = struct xcb_connection_t;

namespace Vantrope {

// Atoms and window properties on the application's own X connection, for the few things Qt has no
// call for (drag sources' properties, desktop hints).
class X11Properties final {
public:
    X11Properties() = delete;

    // Null when the application does not run on xcb.
    static xcb_connection_t* connection();
    static quint32 rootWindow();
    // Interned once per name; 0 without a connection.
    static quint32 atom(const char* name);

    // The whole value of a property of any type, absent when the window has none or is gone.
    static std::optional<QByteArray> read(quint32 window, quint32 property);
    static std::optional<QList<quint32>> read32(quint32 window, quint32 property);
    static void write(quint32 window, quint32 property, quint32 type, const QByteArray& value);
    static void write32(quint32 window, quint32 property, quint32 type, const QList<quint32>& values);
    // A client message to the root window, the way window managers take requests for mapped windows.
    static void sendToRoot(quint32 window, quint32 type, const QList<quint32>& data);
    static void flush();
};

} // namespace Vantrope
