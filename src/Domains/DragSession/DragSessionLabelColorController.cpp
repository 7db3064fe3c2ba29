// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionLabelColorController.h"

#include "DragSessionLogging.h"

#include <algorithm>

namespace Vantrope {

DragSessionLabelColorController::DragSessionLabelColorController(QList<DragSessionLabelColor> colors)
    : m_colors(std::move(colors))
{}

QList<DragSessionLabelColor> DragSessionLabelColorController::standardColors()
{
    QList<DragSessionLabelColor> colors;
    for (const auto id : DragSessionLabelColor::allIdentifiers()) {
        if (id != DragSessionLabelColor::Identifier::monochrome) {
            colors.append(DragSessionLabelColor(id));
        }
    }
    return colors;
}

QList<DragSessionLabelColor>
DragSessionLabelColorController::shuffledStandardColors(QRandomGenerator& generator)
{
    QList<DragSessionLabelColor> colors = standardColors();
    std::shuffle(colors.begin(), colors.end(), generator);
    return colors;
}

DragSessionLabelColor DragSessionLabelColorController::nextColor()
{
    if (m_colors.isEmpty()) {
        qCDebug(lcDragSession) << "All label colours are in use; starting over with the standard colours";
        m_colors = standardColors();
        m_unlockedColors.clear();
    }
    const DragSessionLabelColor color =
        m_colors.isEmpty() ? standardColors().constFirst() : m_colors.takeLast();
    m_unlockedColors.append(color);
    return color;
}

void DragSessionLabelColorController::giveBack(const DragSessionLabelColor& color)
{
    // A colour handed out before the last refill is already back in the pool.
    if (!m_unlockedColors.removeOne(color)) {
        return;
    }
    // At the far end of the pool: the colours no open shelf has had come first.
    if (!m_colors.contains(color)) {
        m_colors.prepend(color);
    }
}

} // namespace Vantrope
