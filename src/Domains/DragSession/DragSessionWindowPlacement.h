// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Preferences/SettingsItem.h"
#include "Screen.h"

#include <optional>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace Vantrope {

// Where a new shelf window goes. All geometry in points with a bottom-left origin.
class DragSessionWindowPlacement final {
public:
    static constexpr double margin = 20.0;
    static constexpr double collisionInset = 10.0;
    // The default shelf size.
    static constexpr QSizeF defaultSize{180.0, 188.0};

    // The origin for a fixed location on `screen`, moved on when another shelf already sits there.
    // "cursor" puts the shelf at `mouse`.
    static QPointF origin(SettingsItem::ShelfLocation location, const QSizeF& size,
                          const std::optional<Screen>& screen, const QPointF& mouse,
                          const QList<QRectF>& otherShelves);

    // A shelf centred on a point (a gesture, a hot key, a drop), kept inside the screen's visible frame.
    static QPointF centredOrigin(const QPointF& point, const QSizeF& size,
                                 const std::optional<Screen>& screen);

private:
    static QPointF avoidOthers(const QRectF& wanted, const QRectF& bounds, bool anchoredTop,
                               bool anchoredRight, const QList<QRectF>& others);
};

} // namespace Vantrope
