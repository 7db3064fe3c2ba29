// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "StackLayout.h"

#include <algorithm>
#include <array>

namespace Vantrope {

QList<StackLayout::Placement> StackLayout::placements(qsizetype numberOfItems)
{
    static constexpr std::array<Placement, maximumVisibleItems> pile{{{0.0, QPointF(0, 0)},
                                                                      {-7.0, QPointF(-7, -5)},
                                                                      {6.0, QPointF(7, -8)},
                                                                      {-11.0, QPointF(-10, -10)},
                                                                      {10.0, QPointF(10, -12)}}};
    const qsizetype count = std::clamp<qsizetype>(numberOfItems, 0, maximumVisibleItems);
    return QList<Placement>(pile.begin(), pile.begin() + count);
}

QRectF StackLayout::frame(const QSizeF& stackSize, const QSizeF& itemSize)
{
    const QSizeF size = itemSize.boundedTo(stackSize);
    return {(stackSize.width() - size.width()) / 2, (stackSize.height() - size.height()) / 2, size.width(),
            size.height()};
}

} // namespace Vantrope
