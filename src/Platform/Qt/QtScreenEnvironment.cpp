// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtScreenEnvironment.h"

#include "Platform/ScreenCoordinates.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace Vantrope {

QRectF QtScreenEnvironment::toBottomLeft(const QRectF& topLeftRect)
{
    // The reflection turns the rectangle's lower edge into its origin.
    const QPointF origin =
        ScreenCoordinates::toBottomLeft(topLeftRect.bottomLeft(), ScreenCoordinates::primaryScreenGeometry());
    return {origin, topLeftRect.size()};
}

QRectF QtScreenEnvironment::toTopLeft(const QRectF& bottomLeftRect)
{
    const QPointF lowerLeft =
        ScreenCoordinates::toTopLeft(bottomLeftRect.topLeft(), ScreenCoordinates::primaryScreenGeometry());
    return {QPointF(lowerLeft.x(), lowerLeft.y() - bottomLeftRect.height()), bottomLeftRect.size()};
}

Screen QtScreenEnvironment::screen(const QScreen& screen)
{
    return {screen.name(), toBottomLeft(screen.geometry()), toBottomLeft(screen.availableGeometry())};
}

QList<Screen> QtScreenEnvironment::screens() const
{
    QList<Screen> result;
    for (const QScreen* screen : QGuiApplication::screens()) {
        result.append(QtScreenEnvironment::screen(*screen));
    }
    return result;
}

QPointF QtScreenEnvironment::mouseLocation() const
{
    return ScreenCoordinates::toBottomLeft(QCursor::pos(), ScreenCoordinates::primaryScreenGeometry());
}

std::optional<Screen> QtScreenEnvironment::mainScreen() const
{
    if (const QWindow* focus = QGuiApplication::focusWindow(); focus && focus->screen()) {
        return screen(*focus->screen());
    }
    if (const QScreen* primary = QGuiApplication::primaryScreen()) {
        return screen(*primary);
    }
    return std::nullopt;
}

} // namespace Vantrope
