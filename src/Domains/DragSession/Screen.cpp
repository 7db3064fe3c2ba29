// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Screen.h"

namespace Vantrope {

std::optional<Screen> ScreenEnvironment::screenUnderMouse() const
{
    const QPointF mouse = mouseLocation();
    for (const Screen& screen : screens()) {
        // Inclusive of the far edges, so the pointer pressed into a corner still counts.
        const QRectF& f = screen.frame;
        if (mouse.x() >= f.left() && mouse.x() <= f.right() && mouse.y() >= f.top() &&
            mouse.y() <= f.bottom()) {
            return screen;
        }
    }
    return std::nullopt;
}

} // namespace Vantrope
