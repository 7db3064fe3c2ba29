// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragRecognizerSession.h"

#include <cmath>

namespace Vantrope {

void DragRecognizerSession::update(QPointF point, Clock::TimePoint now)
{
    if (!initialPosition) {
        initialPosition = point;
        initialPositionTimestamp = now;
        return;
    }
    if (lastPosition) {
        if (!lastDirection) {
            // Deliberately measured from the first point and without moving `lastPosition`.
            lastDirection = initialPosition->x() > point.x() ? Direction::right : Direction::left;
            return;
        }

        const Direction previousDirection = *lastDirection;
        lastDirection = lastPosition->x() > point.x() ? Direction::right : Direction::left;

        if (initialPositionTimestamp && now - *initialPositionTimestamp > shakeWindow) {
            currentNumberOfTurns = 0;
            turnDistance = 0;
            initialPositionTimestamp = now;
        }
        if (lastPositionUpdateTimestamp && !complete &&
            now - *lastPositionUpdateTimestamp > treshold.resetSessionTimeInterval) {
            currentNumberOfTurns = 0;
            turnDistance = 0;
        }
        lastPositionUpdateTimestamp = now;

        if (*lastDirection != previousDirection) {
            if (turnDistance >= treshold.requiredTurnDistance) {
                ++currentNumberOfTurns;
            }
            turnDistance = 0;
        } else {
            turnDistance += std::abs(lastPosition->x() - point.x());
        }
        complete = treshold.requiredNumberOfTurns < currentNumberOfTurns;
    }
    lastPosition = point;
}

void DragRecognizerSession::resetAfterGesture()
{
    initialPosition.reset();
    lastPosition.reset();
    lastDirection.reset();
    currentNumberOfTurns = 0;
    complete = false;
}

} // namespace Vantrope
