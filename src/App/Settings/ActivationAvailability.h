// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "App/DisplayEnvironment.h"

#include <QString>

namespace Vantrope {

class DragMonitor;

// Which ways of opening a shelf work in the session at hand, and why the others do not, in words for
// the settings.
class ActivationAvailability final {
public:
    ActivationAvailability(DisplayEnvironment::Kind session, bool dragsVisible, QString reason);
    // From the monitor the program runs; none counts as one that sees nothing.
    static ActivationAvailability of(DisplayEnvironment::Kind session, const DragMonitor* monitor);

    DisplayEnvironment::Kind session() const { return m_session; }
    // Shaking, the held key and the top drop zone all need other programs' drags.
    bool dragsVisible() const { return m_dragsVisible; }
    QString sessionName() const;
    // One paragraph: the session, what works, what does not and why.
    QString summary() const;
    // Under a control that needs drags: empty when they work.
    QString unavailableNote() const;

private:
    DisplayEnvironment::Kind m_session;
    bool m_dragsVisible;
    QString m_reason;
};

} // namespace Vantrope
