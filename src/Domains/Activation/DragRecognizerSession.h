// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "CompletionTreshold.h"
#include "Libraries/Core/Clock.h"

#include <optional>
#include <QPointF>

namespace Vantrope {

// `right` means that x fell: the names stand for the side the pointer came from.
enum class DragDirection { left = 0, right = 1 };

// The measuring state of one shake: it counts turns of horizontal direction whose run was long enough,
// within a fixed window of one second. Times are readings of the recognizer's clock.
struct DragRecognizerSession {
    using Direction = DragDirection;

    // The window in which the turns of one shake must fall; it restarts when it runs out.
    static constexpr std::chrono::milliseconds shakeWindow{1000};

    CompletionTreshold treshold;
    std::optional<Clock::TimePoint> initialPositionTimestamp;
    std::optional<QPointF> initialPosition;
    std::optional<QPointF> lastPosition;
    std::optional<Direction> lastDirection;
    bool complete = false;
    std::optional<Clock::TimePoint> lastPositionUpdateTimestamp;
    double turnDistance = 0;
    int currentNumberOfTurns = 0;

    // Feeds one drag position. Only x is compared.
    void update(QPointF point, Clock::TimePoint now);
    // What the end of a gesture clears; the timestamps and the run distance stay.
    void resetAfterGesture();
};

} // namespace Vantrope
