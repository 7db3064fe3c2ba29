#include "StackLayout.h"

#include <algorithm>
#include <array>

namespace Vantrope {

QList<double> StackLayout::angles(qsizetype numberOfItems)
{
    static constexpr std::array<double, maximumVisibleItems> fan{0.0, -7.0, 6.0, -11.0, 10.0};
    const qsizetype count = std::clamp<qsizetype>(numberOfItems, 0, maximumVisibleItems);
    return QList<double>(fan.begin(), fan.begin() + count);
}

QList<QPointF> StackLayout::offsets(qsizetype numberOfItems)
{
    static constexpr std::array<QPointF, maximumVisibleItems> spread{
        QPointF(0, 0), QPointF(-7, -5), QPointF(7, -8), QPointF(-10, -10), QPointF(10, -12)};
    const qsizetype count = std::clamp<qsizetype>(numberOfItems, 0, maximumVisibleItems);
    return QList<QPointF>(spread.begin(), spread.begin() + count);
}

QRectF StackLayout::frame(const QSizeF& stackSize, const QSizeF& itemSize)
{
    const QSizeF size = itemSize.boundedTo(stackSize);
    return {(stackSize.width() - size.width()) / 2, (stackSize.height() - size.height()) / 2, size.width(),
            size.height()};
}

} // namespace Vantrope
