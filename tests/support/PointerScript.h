// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <chrono>
#include <QPoint>
#include <QString>
#include <QStringList>

namespace Vantrope::Test {

// The arguments of one xdotool run that moves the pointer, presses its button and keys, as a person's
// hand would on the test display. The button and keys stay down between runs until released.
class PointerScript final {
public:
    // A warp: the pointer jumps there. The drag's pointer grab sees it as one motion, but no device
    // made it, so it makes no raw motion for the shake recognizer.
    PointerScript& moveTo(const QPoint& point)
    {
        m_arguments << QStringLiteral("mousemove") << QString::number(point.x())
                    << QString::number(point.y());
        return *this;
    }

    // Motion as a device makes it: raw motion and a pointer move.
    PointerScript& move(int dx, int dy)
    {
        m_arguments << QStringLiteral("mousemove_relative") << QStringLiteral("--") << QString::number(dx)
                    << QString::number(dy);
        return *this;
    }

    PointerScript& pause(std::chrono::milliseconds duration)
    {
        // xdotool takes seconds.
        m_arguments << QStringLiteral("sleep") << QString::number(double(duration.count()) / 1000.0, 'f', 3);
        return *this;
    }

    PointerScript& press()
    {
        m_arguments << QStringLiteral("mousedown") << QStringLiteral("1");
        return *this;
    }

    PointerScript& release()
    {
        m_arguments << QStringLiteral("mouseup") << QStringLiteral("1");
        return *this;
    }

    PointerScript& keyDown(const QString& key)
    {
        m_arguments << QStringLiteral("keydown") << key;
        return *this;
    }

    PointerScript& keyUp(const QString& key)
    {
        m_arguments << QStringLiteral("keyup") << key;
        return *this;
    }

    // Warps from one point to another in even steps with a pause after each, so a drag's target sees
    // the pointer arrive.
    PointerScript& glide(const QPoint& from, const QPoint& to, int steps = 8,
                         std::chrono::milliseconds stepPause = std::chrono::milliseconds(60))
    {
        for (int step = 1; step <= steps; ++step) {
            moveTo(from + (to - from) * step / steps).pause(stepPause);
        }
        return *this;
    }

    // One horizontal shake of normal strength: runs of four 15-point steps, ending on the step that
    // makes the fifth counted turn, 45 points right of where it starts.
    PointerScript& shake(std::chrono::milliseconds stepPause = std::chrono::milliseconds(20))
    {
        for (int run = 0; run < 6; ++run) {
            for (int i = 0; i < (run == 5 ? 1 : 4); ++i) {
                move(run % 2 == 0 ? 15 : -15, 0).pause(stepPause);
            }
        }
        return *this;
    }

    // Press on a drag source and move far enough that it starts its drag.
    PointerScript& startDrag(const QPoint& source)
    {
        using namespace std::chrono_literals;
        return moveTo(source).pause(100ms).press().pause(100ms).move(20, 0).pause(50ms).move(20, 0);
    }

    // A whole drag from one point to another, released there.
    PointerScript& drag(const QPoint& from, const QPoint& to)
    {
        using namespace std::chrono_literals;
        return moveTo(from).pause(200ms).press().pause(150ms).glide(from, to).pause(300ms).release();
    }

    QStringList arguments() const { return m_arguments; }

private:
    QStringList m_arguments;
};

} // namespace Vantrope::Test
