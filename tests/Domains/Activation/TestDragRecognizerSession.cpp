// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Activation/DragRecognizer.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

// Three events at x = 100 that set up the session (first point, last point, first direction), then one
// run per entry of `stepSizes`, `stepsPerRun` steps each, alternating right and left. A run's first step
// is its turn and adds no distance, so every run but the first counts (stepsPerRun - 1) * step.
QList<double> shake(const QList<double>& stepSizes, int stepsPerRun = 3)
{
    QList<double> xs{100, 100, 100};
    double x = 100;
    double sign = 1;
    for (const double step : stepSizes) {
        for (int i = 0; i < stepsPerRun; ++i) {
            x += sign * step;
            xs.append(x);
        }
        sign = -sign;
    }
    return xs;
}

QList<double> repeated(double step, int runs)
{
    return QList<double>(runs, step);
}

} // namespace

// The arithmetic of one shake, driven point by point with explicit times.
class TestDragRecognizerSession final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void countsTurns_data()
    {
        QTest::addColumn<DragRecognizer::Sensitivity>("sensitivity");
        QTest::addColumn<QList<double>>("xs");
        QTest::addColumn<milliseconds>("interval");
        // The gap before the event at this index instead of `interval` (-1: none).
        QTest::addColumn<int>("pauseBefore");
        QTest::addColumn<milliseconds>("pause");
        QTest::addColumn<int>("turns");
        QTest::addColumn<bool>("complete");

        using S = DragRecognizer::Sensitivity;
        const auto row = [](const char* tag, S sensitivity, const QList<double>& xs, int turns, bool complete,
                            milliseconds interval = 20ms, int pauseBefore = -1, milliseconds pause = 0ms) {
            QTest::newRow(tag) << sensitivity << xs << interval << pauseBefore << pause << turns << complete;
        };
        // Six runs make five turns; the turn into run four is the event at index 3 + 3 * 3.
        const QList<double> six = shake(repeated(10, 6));
        row("normal, four turns", S::normal, shake(repeated(10, 5)), 4, false);
        row("normal, the fifth turn completes", S::normal, six, 5, true);
        row("normal, runs just short of 20 points", S::normal, shake(repeated(9.9, 6)), 1, false);
        row("a short run neither counts nor clears the count", S::normal, shake({10, 10, 5, 10, 10, 10, 10}),
            5, true);
        row("high, three turns", S::high, shake(repeated(6, 4)), 3, false);
        row("high, four turns", S::high, shake(repeated(6, 5)), 4, true);
        row("high, runs of 11 points", S::high, shake(repeated(5.5, 5)), 1, false);
        row("ludicrous, one turn", S::ludicrous, shake(repeated(2.5, 2)), 1, false);
        row("ludicrous, two turns", S::ludicrous, shake(repeated(2.5, 3)), 2, true);
        row("a pause of 0.21 s clears the count", S::normal, six, 2, false, 20ms, 12, 210ms);
        row("a pause of exactly 0.2 s does not", S::normal, six, 5, true, 20ms, 12, 200ms);
        // 21 events 0.05 s apart span exactly the one-second window.
        row("a shake within one second", S::normal, six, 5, true, 50ms);
        row("a shake over one second never completes", S::normal, six, 0, false, 60ms);
        row("a complete shake ignores pauses", S::normal, shake(repeated(10, 7)), 6, true, 20ms, 20, 500ms);
    }

    void countsTurns()
    {
        QFETCH(DragRecognizer::Sensitivity, sensitivity);
        QFETCH(QList<double>, xs);
        QFETCH(milliseconds, interval);
        QFETCH(int, pauseBefore);
        QFETCH(milliseconds, pause);
        QFETCH(int, turns);
        QFETCH(bool, complete);

        DragRecognizerSession session;
        session.treshold = DragRecognizer::treshold(sensitivity);
        Clock::TimePoint now;
        for (int i = 0; i < xs.size(); ++i) {
            if (i > 0) {
                now += i == pauseBefore ? pause : interval;
            }
            session.update(QPointF(xs[i], 500 + i), now);
        }
        QCOMPARE(session.currentNumberOfTurns, turns);
        QCOMPARE(session.complete, complete);
    }

    void firstEventsAndVerticalMotion_data()
    {
        QTest::addColumn<QList<QPointF>>("points");
        QTest::addColumn<std::optional<DragDirection>>("direction");
        QTest::addColumn<int>("turns");
        QTest::addColumn<double>("turnDistance");

        QTest::newRow("one point") << QList<QPointF>{{100, 0}} << std::optional<DragDirection>() << 0 << 0.0;
        // The third point is compared with the first, and far moves between them count for nothing.
        QTest::newRow("three points")
            << QList<QPointF>{{100, 0}, {40, 0}, {300, 0}} << std::optional(DragDirection::left) << 0 << 0.0;
        QTest::newRow("x falling from the first point is right")
            << QList<QPointF>{{100, 0}, {140, 0}, {90, 0}} << std::optional(DragDirection::right) << 0 << 0.0;
        // After a counted run to the right, a purely vertical step is a turn to the left.
        QTest::newRow("vertical motion turns")
            << QList<QPointF>{{100, 0}, {100, 0}, {100, 0}, {130, 0}, {160, 0},
                              {130, 0}, {100, 0}, {70, 0},  {70, 40}}
            << std::optional(DragDirection::left) << 2 << 0.0;
        QTest::newRow("vertical motion adds no distance")
            << QList<QPointF>{{100, 0}, {100, 0}, {100, 0}, {100, 30}, {100, 60}, {130, 90}}
            << std::optional(DragDirection::left) << 0 << 30.0;
    }

    void firstEventsAndVerticalMotion()
    {
        QFETCH(QList<QPointF>, points);
        QFETCH(std::optional<DragDirection>, direction);
        QFETCH(int, turns);
        QFETCH(double, turnDistance);

        DragRecognizerSession session;
        Clock::TimePoint now;
        for (const QPointF& point : points) {
            session.update(point, now += 10ms);
        }
        QCOMPARE(session.lastDirection, direction);
        QCOMPARE(session.currentNumberOfTurns, turns);
        QCOMPARE(session.turnDistance, turnDistance);
    }
};

QTEST_GUILESS_MAIN(TestDragRecognizerSession)
#include "TestDragRecognizerSession.moc"
