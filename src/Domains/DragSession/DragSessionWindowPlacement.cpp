// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionWindowPlacement.h"

#include <algorithm>

namespace Vantrope {

namespace {

QPointF clampedInto(const QRectF& rect, const QRectF& bounds)
{
    if (bounds.isEmpty()) {
        return rect.topLeft();
    }
    // In bottom-left coordinates QRectF's "top" is the minimum y.
    const double x =
        std::clamp(rect.left(), bounds.left(), std::max(bounds.left(), bounds.right() - rect.width()));
    const double y =
        std::clamp(rect.top(), bounds.top(), std::max(bounds.top(), bounds.bottom() - rect.height()));
    return {x, y};
}

bool isFree(const QRectF& rect, const QList<QRectF>& others)
{
    return std::none_of(others.cbegin(), others.cend(),
                        [&rect](const QRectF& other) { return other.intersects(rect); });
}

} // namespace

QPointF DragSessionWindowPlacement::origin(SettingsItem::ShelfLocation location, const QSizeF& size,
                                           const std::optional<Screen>& screen, const QPointF& mouse,
                                           const QList<QRectF>& otherShelves)
{
    const QRectF v = screen ? screen->visibleFrame : QRectF();
    const double w = size.width();
    const double h = size.height();
    const double top = v.top() + v.height() - (h + margin);
    using Location = SettingsItem::ShelfLocation;
    QPointF point;
    bool anchoredTop = true;
    bool anchoredRight = true;
    switch (location) {
    case Location::topRight:
        point = {v.right() - (w + margin), top};
        break;
    case Location::topLeft:
        point = {v.left() + margin, top};
        anchoredRight = false;
        break;
    case Location::bottomRight:
        point = {v.right() - (w + margin), v.top() + margin};
        anchoredTop = false;
        break;
    case Location::bottomLeft:
        point = {v.left() + margin, v.top() + margin};
        anchoredTop = false;
        anchoredRight = false;
        break;
    case Location::center:
        // Measured without the screen's origin, as the shelf has always been placed.
        point = {(v.right() - w) * 0.5, (v.height() - h) * 0.5};
        break;
    case Location::cursor:
        point = clampedInto(QRectF(mouse - QPointF(w / 2, h / 2), size), v);
        break;
    }
    if (!screen) {
        return point;
    }
    return avoidOthers(QRectF(point, size),
                       v.adjusted(collisionInset, collisionInset, -collisionInset, -collisionInset),
                       anchoredTop, anchoredRight, otherShelves);
}

QPointF DragSessionWindowPlacement::centredOrigin(const QPointF& point, const QSizeF& size,
                                                  const std::optional<Screen>& screen)
{
    const QRectF wanted(point - QPointF(size.width() / 2, size.height() / 2), size);
    return screen ? clampedInto(wanted, screen->visibleFrame) : wanted.topLeft();
}

QPointF DragSessionWindowPlacement::avoidOthers(const QRectF& wanted, const QRectF& bounds, bool anchoredTop,
                                                bool anchoredRight, const QList<QRectF>& others)
{
    if (isFree(wanted, others) || bounds.isEmpty()) {
        return wanted.topLeft();
    }
    // Walk away from the anchored corner: along the edge first, then one column further in.
    const double stepY = (wanted.height() + collisionInset) * (anchoredTop ? -1.0 : 1.0);
    const double stepX = (wanted.width() + collisionInset) * (anchoredRight ? -1.0 : 1.0);
    for (QRectF column = wanted; column.left() >= bounds.left() && column.right() <= bounds.right();
         column.translate(stepX, 0)) {
        for (QRectF candidate = column;
             candidate.top() >= bounds.top() && candidate.bottom() <= bounds.bottom();
             candidate.translate(0, stepY)) {
            if (isFree(candidate, others)) {
                return candidate.topLeft();
            }
        }
    }
    return wanted.topLeft();
}

} // namespace Vantrope
