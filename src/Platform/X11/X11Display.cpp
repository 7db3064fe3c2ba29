// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11Display.h"

#include <xcb/xcb.h>

namespace Vantrope {

QString X11Display::probe(const QByteArray& display)
{
    xcb_connection_t* connection = xcb_connect(display.constData(), nullptr);
    const int error = xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    if (error == 0) {
        return {};
    }
    return QStringLiteral(
               "cannot connect to the X display \"%1\"; is the X server running and may this user use it?")
        .arg(QString::fromLocal8Bit(display));
}

} // namespace Vantrope
