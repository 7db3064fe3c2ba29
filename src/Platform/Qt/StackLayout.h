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

    // Degrees for the visible pile, the top item first. The top item stands straight so its picture
    // reads; the ones below fan out alternately so the pile shows its depth.
    static QList<double> angles(qsizetype numberOfItems);

    // How far each visible item sits from the pile's centre, the top item first: the ones below peek out
    // above it, so a pile of equal pictures still shows its depth.
    static QList<QPointF> offsets(qsizetype numberOfItems);

    // The frame of one item in a pile of `stackSize`: centred, and never larger than the pile.
    static QRectF frame(const QSizeF& stackSize, const QSizeF& itemSize);
};

} // namespace Vantrope
