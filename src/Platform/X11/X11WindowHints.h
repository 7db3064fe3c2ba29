// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

class QWindow;

namespace Vantrope {

// The EWMH hints of a shelf window that Qt's window flags do not cover.
class X11WindowHints final {
public:
    X11WindowHints() = delete;

    // On every desktop, or only on the one it opened on; never in the task bar or pager. Works before
    // and after the window is shown.
    static void apply(QWindow& window, bool allDesktops);

    // A compositing manager draws translucent windows over what lies below; without one the
    // transparent parts would come out black.
    static bool hasCompositingManager();
};

} // namespace Vantrope
