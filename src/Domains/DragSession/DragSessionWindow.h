// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionLabel.h"
#include "Screen.h"

#include <optional>
#include <QPointF>
#include <QRectF>
#include <QString>

namespace Vantrope {

// The floating window of one shelf, as the logic drives it. Geometry in points, bottom-left origin.
class DragSessionWindow {
public:
    virtual ~DragSessionWindow() = default;

    virtual bool isVisible() const = 0;
    virtual double alphaValue() const = 0;
    virtual void setAlphaValue(double alpha, bool animated) = 0;
    virtual QRectF frame() const = 0;
    virtual void setFrameOrigin(const QPointF& origin) = 0;
    // Shows the window above the others and gives it focus.
    virtual void showAndActivate() = 0;
    // Shows the window above the others and leaves the focus where it is, so that a drag in progress
    // keeps its source window active.
    virtual void showWithoutActivating() = 0;
    // Unique among the program's windows for its whole run.
    virtual quint64 windowNumber() const = 0;
    virtual void close() = 0;
    virtual void setTitle(const QString& title) = 0;
    // Overlay colour, pin mark, and whether the window follows the user to every desktop.
    virtual void applyLabel(const DragSessionLabel& label) = 0;
    // Slid away to a screen edge.
    virtual bool isRetracted() const = 0;
    virtual void retract() = 0;
    virtual std::optional<Screen> screen() const = 0;
    virtual bool containsMouse() const = 0;
};

} // namespace Vantrope
