// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ScreenCoordinates.h"

#include <QGuiApplication>
#include <QScreen>

namespace Vantrope {

QPointF ScreenCoordinates::toBottomLeft(QPointF topLeft, const QRectF& primaryScreen)
{
    return {topLeft.x(), primaryScreen.y() + primaryScreen.height() - topLeft.y()};
}

QPointF ScreenCoordinates::toTopLeft(QPointF bottomLeft, const QRectF& primaryScreen)
{
    return toBottomLeft(bottomLeft, primaryScreen);
}

QRectF ScreenCoordinates::primaryScreenGeometry()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        return {};
    }
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? QRectF(screen->geometry()) : QRectF();
}

} // namespace Vantrope
