// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionLabelColor.h"

#include <QList>
#include <QRandomGenerator>

namespace Vantrope {

// Hands out label colours so that open shelves differ while the pool lasts. When it runs dry it
// starts over with the standard colours, so from then on two shelves may share one.
class DragSessionLabelColorController final {
public:
    explicit DragSessionLabelColorController(QList<DragSessionLabelColor> colors);

    // Every colour but monochrome, in table order.
    static QList<DragSessionLabelColor> standardColors();
    static QList<DragSessionLabelColor>
    shuffledStandardColors(QRandomGenerator& generator = *QRandomGenerator::global());

    const QList<DragSessionLabelColor>& colors() const { return m_colors; }
    const QList<DragSessionLabelColor>& unlockedColors() const { return m_unlockedColors; }

    DragSessionLabelColor nextColor();
    // For a closing shelf: its colour goes back to the pool if it was handed out from it.
    void giveBack(const DragSessionLabelColor& color);

private:
    QList<DragSessionLabelColor> m_colors;
    QList<DragSessionLabelColor> m_unlockedColors;
};

} // namespace Vantrope
