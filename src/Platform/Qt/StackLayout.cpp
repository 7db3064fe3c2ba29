#include "StackLayout.h"

#include <algorithm>
#include <array>

namespace Vantrope {

QList<double> StackLayout::angles(qsizetype numberOfItems)
{
    static constexpr std::array<double, maximumVisibleItems> fan{0.0, -6.0, 5.0, -10.0, 9.0};
    const qsizetype count = std::clamp<qsizetype>(numberOfItems, 0, maximumVisibleItems);
    return QList<double>(fan.begin(), fan.begin() + count);
}

QRectF StackLayout::frame(const QSizeF& stackSize, const QSizeF& itemSize)
{
    const QSizeF size = itemSize.boundedTo(stackSize);
    return {(stackSize.width() - size.width()) / 2, (stackSize.height() - size.height()) / 2, size.width(),
            size.height()};
}

} // namespace Vantrope
