// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/Screen.h"

class QScreen;

namespace Vantrope {

// The displays and the pointer as Qt sees them, turned into the logic's points with a bottom-left origin.
class QtScreenEnvironment final : public ScreenEnvironment {
public:
    QList<Screen> screens() const override;
    QPointF mouseLocation() const override;
    std::optional<Screen> mainScreen() const override;

    static Screen screen(const QScreen& screen);
    // A rectangle in Qt's global coordinates as the logic places it, and back.
    static QRectF toBottomLeft(const QRectF& topLeftRect);
    static QRectF toTopLeft(const QRectF& bottomLeftRect);
};

} // namespace Vantrope
