// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QPointF>
#include <QRectF>

namespace Vantrope {

// The logic places things in points with the origin at the bottom left of the primary screen and y
// growing upwards; Qt and X11 count from the top left, y downwards. These are the only conversions
// between the two. Both directions are the same reflection.
class ScreenCoordinates final {
public:
    ScreenCoordinates() = delete;

    static QPointF toBottomLeft(QPointF topLeft, const QRectF& primaryScreen);
    static QPointF toTopLeft(QPointF bottomLeft, const QRectF& primaryScreen);

    // Against the primary screen of the running application; an empty rectangle without one.
    static QRectF primaryScreenGeometry();
};

} // namespace Vantrope
