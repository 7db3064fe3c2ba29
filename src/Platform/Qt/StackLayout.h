// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace Vantrope {

// The pile of item previews on a shelf: how many show, how each one leans and where it sits.
class StackLayout final {
public:
    // Deeper items are hidden under these; a drop of thousands costs no more to draw than five.
    static constexpr int maximumVisibleItems = 5;

    // How one visible item lies on the pile: turned by `angle` degrees and moved by `offset` from the
    // pile's centre. The top item stands straight and centred so its picture reads; the ones below fan
    // out alternately and peek out above it, so even a pile of equal pictures shows its depth.
    struct Placement {
        double angle = 0.0;
        QPointF offset;
    };

    // One placement per visible item, the top item first.
    static QList<Placement> placements(qsizetype numberOfItems);

    // The frame of one item in a pile of `stackSize`: centred, and never larger than the pile.
    static QRectF frame(const QSizeF& stackSize, const QSizeF& itemSize);
};

} // namespace Vantrope
