// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DisplayEnvironment.h"

#ifdef WITH_X11
#include "Platform/X11/X11Display.h"
#endif

#include <QByteArray>
#include <QtGlobal>

namespace Vantrope {

DisplayEnvironment DisplayEnvironment::detect()
{
    DisplayEnvironment environment;
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (platform == "offscreen" || platform == "minimal") {
        environment.m_kind = Kind::headless;
        return environment;
    }

    const QByteArray display = qgetenv("DISPLAY");
    const QByteArray waylandDisplay = qgetenv("WAYLAND_DISPLAY");
    const bool waylandSession = qgetenv("XDG_SESSION_TYPE") == "wayland" || !waylandDisplay.isEmpty();

    if (!display.isEmpty()) {
#ifdef WITH_X11
        if (const QString error = X11Display::probe(display); !error.isEmpty()) {
            if (waylandSession) {
                environment.m_kind = Kind::wayland;
                return environment;
            }
            environment.m_problem = error;
            return environment;
        }
#endif
        environment.m_kind = waylandSession ? Kind::xwayland : Kind::x11;
        return environment;
    }
    if (!waylandDisplay.isEmpty()) {
        environment.m_kind = Kind::wayland;
        return environment;
    }
    environment.m_problem = QStringLiteral("no graphical display found (DISPLAY and WAYLAND_DISPLAY are "
                                           "unset); start Vantrope from a desktop session");
    return environment;
}

QString DisplayEnvironment::preferredPlatform() const
{
    // Global drag monitoring, window stacking and placement need X11, so a Wayland session goes through
    // XWayland whenever it is there.
    switch (m_kind) {
    case Kind::x11:
    case Kind::xwayland:
        return QStringLiteral("xcb");
    case Kind::wayland:
        return QStringLiteral("wayland");
    case Kind::headless:
    case Kind::none:
        break;
    }
    return {};
}

} // namespace Vantrope
