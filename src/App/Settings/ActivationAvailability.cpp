// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActivationAvailability.h"

#include "Domains/Activation/DragMonitor.h"
#include "Libraries/Core/Localized.h"

namespace Vantrope {

ActivationAvailability::ActivationAvailability(DisplayEnvironment::Kind session, bool dragsVisible,
                                               QString reason)
    : m_session(session)
    , m_dragsVisible(dragsVisible)
    , m_reason(std::move(reason))
{}

ActivationAvailability ActivationAvailability::of(DisplayEnvironment::Kind session,
                                                  const DragMonitor* monitor)
{
    if (!monitor) {
        return {session, false, {}};
    }
    return {session, monitor->isAvailable(),
            monitor->isAvailable() ? QString() : monitor->unavailableReason()};
}

QString ActivationAvailability::sessionName() const
{
    switch (m_session) {
    case DisplayEnvironment::Kind::x11:
        return Localized("settings.session.x11", "X11");
    case DisplayEnvironment::Kind::xwayland:
        return Localized("settings.session.xwayland", "Wayland, through XWayland");
    case DisplayEnvironment::Kind::wayland:
        return Localized("settings.session.wayland", "Wayland");
    case DisplayEnvironment::Kind::headless:
    case DisplayEnvironment::Kind::none:
        break;
    }
    return Localized("settings.session.none", "no display");
}

QString ActivationAvailability::summary() const
{
    const QString always = Localized("settings.activation.summary.always",
                                     "Dropping onto the tray icon and the vantrope command work in any "
                                     "session.");
    QString works;
    if (!m_dragsVisible) {
        works = Localized("settings.activation.summary.no-drags",
                          "Shaking the pointer and holding a key during a drag do not work here: %1")
                    .arg(m_reason.isEmpty() ? Localized("settings.activation.summary.no-monitor",
                                                        "nothing watches drags in this session.")
                                            : m_reason);
    } else if (m_session == DisplayEnvironment::Kind::xwayland) {
        works = Localized("settings.activation.summary.xwayland",
                          "Shaking the pointer and holding a key during a drag work for drags that start in "
                          "X11 programs; Wayland programs keep their drags to themselves.");
    } else {
        works = Localized("settings.activation.summary.x11",
                          "Shaking the pointer and holding a key during a drag work with every program.");
    }
    return Localized("settings.activation.summary", "This session: %1. %2 %3")
        .arg(sessionName(), works, always);
}

QString ActivationAvailability::unavailableNote() const
{
    if (m_dragsVisible) {
        return {};
    }
    return Localized("settings.activation.not-available", "Not available in this session (%1).")
        .arg(sessionName());
}

} // namespace Vantrope
