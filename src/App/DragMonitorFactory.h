// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DisplayEnvironment.h"
#include "Domains/Activation/DragMonitor.h"

#include <memory>
#include <QByteArray>

namespace Vantrope {

// Picks the drag monitor that works in the session at hand, or a null one that says why none does.
// Needs a running QCoreApplication: the X11 monitor reads its connection from the event loop.
class DragMonitorFactory final {
public:
    DragMonitorFactory() = delete;

    static std::unique_ptr<DragMonitor> create(const DisplayEnvironment& environment);
    static std::unique_ptr<DragMonitor> create(DisplayEnvironment::Kind kind, const QByteArray& x11Display);
};

} // namespace Vantrope
