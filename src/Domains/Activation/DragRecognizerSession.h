#pragma once

#include "CompletionTreshold.h"

#include <optional>
#include <QPointF>

namespace Vantrope {

// `right` means that x fell: the names stand for the side the pointer came from.
enum class DragDirection { left = 0, right = 1 };

// The measuring state of one shake: it counts turns of horizontal direction whose run was long enough,
// within a fixed window of one second. Times are seconds on the recognizer's clock.
struct DragRecognizerSession {
    using Direction = DragDirection;

    // The window in which the turns of one shake must fall; it restarts when it runs out.
    static constexpr double shakeWindow = 1.0;

    CompletionTreshold treshold;
    std::optional<double> initialPositionTimestamp;
    std::optional<QPointF> initialPosition;
    std::optional<QPointF> lastPosition;
    std::optional<Direction> lastDirection;
    bool complete = false;
    std::optional<double> lastPositionUpdateTimestamp;
    double turnDistance = 0;
    int currentNumberOfTurns = 0;

    // Feeds one drag position. Only x is compared.
    void update(QPointF point, double now);
    // What the end of a gesture clears; the timestamps and the run distance stay.
    void resetAfterGesture();
};

} // namespace Vantrope
