// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ManualClock.h"
#include "Libraries/Core/Throttler.h"

#include <chrono>
#include <QTest>
#include <vector>

using namespace Vantrope;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

class TestThrottler final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void burstsRunTheLastClosure_data()
    {
        QTest::addColumn<milliseconds>("delay");
        QTest::addColumn<milliseconds>("interval");
        QTest::addColumn<int>("calls");
        QTest::addColumn<QList<int>>("expectedRuns");

        // Values are the index of the call whose closure ran.
        QTest::newRow("burst inside the delay merges") << milliseconds(1s) << 100ms << 9 << QList<int>{8};
        // Calls every 0.1 s for 2 s against a 0.4 s delay: one run per 0.4 s of burst, never more. A call
        // on the very instant of a run comes after it.
        QTest::newRow("long burst") << 400ms << 100ms << 20 << QList<int>{3, 7, 11, 15, 19};
        QTest::newRow("spaced calls each run") << 500ms << milliseconds(1s) << 3 << QList<int>{0, 1, 2};
    }

    void burstsRunTheLastClosure()
    {
        QFETCH(milliseconds, delay);
        QFETCH(milliseconds, interval);
        QFETCH(int, calls);
        QFETCH(QList<int>, expectedRuns);

        ManualClock clock;
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.throttler"));
        Throttler throttler(delay, queue, clock);
        QList<int> runs;
        std::vector<Clock::TimePoint> runTimes;
        for (int i = 0; i < calls; ++i) {
            throttler.throttle([&, i] {
                runs.append(i);
                runTimes.push_back(clock.now());
            });
            clock.advance(interval);
        }
        clock.advance(delay * 2);
        queue.drain();

        QCOMPARE(runs, expectedRuns);
        for (size_t i = 1; i < runTimes.size(); ++i) {
            QVERIFY2(runTimes[i] - runTimes[i - 1] >= delay, "two runs closer than the minimum delay");
        }
    }

    void nothingRunsBeforeTheDelay()
    {
        ManualClock clock;
        Throttler throttler(1s, DispatchQueue::main(), clock);
        int runs = 0;
        throttler.throttle([&] { ++runs; });
        clock.advance(999ms);
        QCOMPARE(runs, 0);
        QVERIFY(throttler.hasPendingWork());
        clock.advance(1ms);
        QCOMPARE(runs, 1);
        QVERIFY(!throttler.hasPendingWork());
    }

    void cancelDropsPendingWork()
    {
        ManualClock clock;
        Throttler throttler(500ms, DispatchQueue::main(), clock);
        QStringList runs;
        throttler.throttle([&] { runs.append(QStringLiteral("dropped")); });
        throttler.cancel();
        clock.advance(1s);
        QVERIFY(runs.isEmpty());

        // The throttler is usable again after a cancel, and the old timer must not fire the new work early.
        throttler.throttle([&] { runs.append(QStringLiteral("kept")); });
        clock.advance(490ms);
        QVERIFY(runs.isEmpty());
        clock.advance(20ms);
        QCOMPARE(runs, QStringList{QStringLiteral("kept")});
    }

    void destroyedThrottlerRunsNothing()
    {
        ManualClock clock;
        int runs = 0;
        {
            Throttler throttler(500ms, DispatchQueue::main(), clock);
            throttler.throttle([&] { ++runs; });
        }
        clock.advance(1s);
        QCOMPARE(runs, 0);
    }

    void realClockMergesABurst()
    {
        Throttler throttler(50ms, DispatchQueue::main(), Clock::system());
        int runs = 0;
        int lastValue = -1;
        for (int i = 0; i < 10; ++i) {
            throttler.throttle([&, i] {
                ++runs;
                lastValue = i;
            });
        }
        QTRY_COMPARE(runs, 1);
        QCOMPARE(lastValue, 9);
    }
};

QTEST_GUILESS_MAIN(TestThrottler)
#include "TestThrottler.moc"
