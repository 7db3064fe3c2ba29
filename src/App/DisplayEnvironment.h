// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// What kind of graphical session the program was started in, decided before any window system is
// touched, so that a start without a display can end with one clear line instead of an abort.
class DisplayEnvironment final {
public:
    enum class Kind {
        x11,      // a real X server
        xwayland, // X11 through XWayland inside a Wayland session
        wayland,  // Wayland only: no global input, so gestures are unavailable
        headless, // a Qt platform without a screen (tests)
        none,
    };

    static DisplayEnvironment detect();

    Kind kind() const { return m_kind; }
    bool isUsable() const { return m_kind != Kind::none; }
    // Why no display can be used; empty when one can.
    QString problem() const { return m_problem; }
    // The Qt platform plugin to ask for, or empty to let Qt choose.
    QString preferredPlatform() const;

private:
    Kind m_kind = Kind::none;
    QString m_problem;
};

} // namespace Vantrope
