// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

namespace Vantrope {

// A display as the shelf logic sees it: points, with the origin at the bottom left of the primary
// screen and y growing upwards.
struct Screen {
    QString name;
    QRectF frame;
    // The frame less panels and docks.
    QRectF visibleFrame;

    bool operator==(const Screen&) const = default;
};

// The displays and the pointer, for placing shelves.
class ScreenEnvironment {
public:
    virtual ~ScreenEnvironment() = default;
    virtual QList<Screen> screens() const = 0;
    virtual QPointF mouseLocation() const = 0;
    // The screen with keyboard focus; the first screen when no better answer exists.
    virtual std::optional<Screen> mainScreen() const = 0;

    // The first screen whose frame holds the pointer.
    std::optional<Screen> screenUnderMouse() const;
};

} // namespace Vantrope
