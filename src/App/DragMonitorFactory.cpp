// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragMonitorFactory.h"

#include "Domains/Activation/NullDragMonitor.h"
#include "Domains/Activation/RecognizerLogging.h"
#include "Libraries/Core/Localized.h"

#ifdef WITH_X11
#include "Platform/X11/X11DragMonitor.h"
#endif

namespace Vantrope {

std::unique_ptr<DragMonitor> DragMonitorFactory::create(const DisplayEnvironment& environment)
{
    return create(environment.kind(), qgetenv("DISPLAY"));
}

std::unique_ptr<DragMonitor> DragMonitorFactory::create(DisplayEnvironment::Kind kind,
                                                        const QByteArray& x11Display)
{
    switch (kind) {
    case DisplayEnvironment::Kind::x11:
    case DisplayEnvironment::Kind::xwayland: {
#ifdef WITH_X11
        auto monitor = X11DragMonitor::open(x11Display);
        if (!monitor) {
            return std::make_unique<NullDragMonitor>(
                Localized("settings.gestures.unavailable.x11",
                          "The X server lacks what drag gestures need: %1.")
                    .arg(monitor.error()));
        }
        if (kind == DisplayEnvironment::Kind::xwayland) {
            qCInfo(lcRecognizer) << "Drag gestures see only drags that start in X11 programs in this "
                                    "Wayland session";
        }
        return std::move(*monitor);
#else
        Q_UNUSED(x11Display)
        return std::make_unique<NullDragMonitor>(
            Localized("settings.gestures.unavailable.no-x11", "This build of Vantrope has no X11 support."));
#endif
    }
    case DisplayEnvironment::Kind::wayland:
        return std::make_unique<NullDragMonitor>(
            Localized("settings.gestures.unavailable.wayland",
                      "Wayland does not let an application see other applications' drags, and this "
                      "session has no XWayland."));
    case DisplayEnvironment::Kind::headless:
    case DisplayEnvironment::Kind::none:
        break;
    }
    return std::make_unique<NullDragMonitor>(
        Localized("settings.gestures.unavailable.no-display", "There is no display to watch drags on."));
}

} // namespace Vantrope
