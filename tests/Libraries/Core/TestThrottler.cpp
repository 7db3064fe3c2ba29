#include "Libraries/Core/ManualClock.h"
#include "Libraries/Core/Throttler.h"

#include <QTest>
#include <vector>

using namespace Vantrope;

class TestThrottler final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void burstsRunTheLastClosure_data()
    {
        QTest::addColumn<double>("delay");
        QTest::addColumn<double>("interval");
        QTest::addColumn<int>("calls");
        QTest::addColumn<QList<int>>("expectedRuns");

        // Values are the index of the call whose closure ran.
        QTest::newRow("burst inside the delay merges") << 1.0 << 0.1 << 9 << QList<int>{8};
        // Calls every 0.1 s for 2 s against a 0.4 s delay: one run per 0.4 s of burst, never more.
        QTest::newRow("long burst") << 0.4 << 0.1 << 20 << QList<int>{3, 7, 11, 15, 19};
        QTest::newRow("spaced calls each run") << 0.5 << 1.0 << 3 << QList<int>{0, 1, 2};
    }

    void burstsRunTheLastClosure()
    {
        QFETCH(double, delay);
        QFETCH(double, interval);
        QFETCH(int, calls);
        QFETCH(QList<int>, expectedRuns);

        ManualClock clock;
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.throttler"));
        Throttler throttler(delay, queue, clock);
        QList<int> runs;
        std::vector<double> runTimes;
        for (int i = 0; i < calls; ++i) {
            throttler.throttle([&, i] {
                runs.append(i);
                runTimes.push_back(clock.now());
            });
            // Nudge past exact multiples so a call never lands on the very instant of a run.
            clock.advance(interval + 1e-6);
        }
        clock.advance(delay * 2);
        queue.drain();

        QCOMPARE(runs, expectedRuns);
        for (size_t i = 1; i < runTimes.size(); ++i) {
            QVERIFY2(runTimes[i] - runTimes[i - 1] >= delay - 1e-9, "two runs closer than the minimum delay");
        }
    }

    void nothingRunsBeforeTheDelay()
    {
        ManualClock clock;
        Throttler throttler(1.0, DispatchQueue::main(), clock);
        int runs = 0;
        throttler.throttle([&] { ++runs; });
        clock.advance(0.99);
        QCOMPARE(runs, 0);
        QVERIFY(throttler.hasPendingWork());
        clock.advance(0.02);
        QCOMPARE(runs, 1);
        QVERIFY(!throttler.hasPendingWork());
    }

    void cancelDropsPendingWork()
    {
        ManualClock clock;
        Throttler throttler(0.5, DispatchQueue::main(), clock);
        QStringList runs;
        throttler.throttle([&] { runs.append(QStringLiteral("dropped")); });
        throttler.cancel();
        clock.advance(1.0);
        QVERIFY(runs.isEmpty());

        // The throttler is usable again after a cancel, and the old timer must not fire the new work early.
        throttler.throttle([&] { runs.append(QStringLiteral("kept")); });
        clock.advance(0.49);
        QVERIFY(runs.isEmpty());
        clock.advance(0.02);
        QCOMPARE(runs, QStringList{QStringLiteral("kept")});
    }

    void destroyedThrottlerRunsNothing()
    {
        ManualClock clock;
        int runs = 0;
        {
            Throttler throttler(0.5, DispatchQueue::main(), clock);
            throttler.throttle([&] { ++runs; });
        }
        clock.advance(1.0);
        QCOMPARE(runs, 0);
    }

    void realClockMergesABurst()
    {
        Throttler throttler(0.05, DispatchQueue::main(), Clock::system());
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
