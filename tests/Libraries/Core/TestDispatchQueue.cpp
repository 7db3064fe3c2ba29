// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/DispatchGroup.h"
#include "Libraries/Core/DispatchQueue.h"
#include "support/TestSupport.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>
#include <thread>
#include <vector>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

// Spins until `done` holds or the deadline passes; false on the deadline. For waits off the main thread,
// where no event loop runs.
template<typename Predicate> bool waitUntil(Predicate done, std::chrono::milliseconds timeout = 10s)
{
    const QDeadlineTimer deadline(timeout);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::usleep(200);
    }
    return true;
}

} // namespace

class TestDispatchQueue final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsWorkInOrderOneAtATime()
    {
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.serial"));
        // Idle queues of their own, so the pool has threads to spare: with a single thread it would keep
        // any queue serial by itself.
        std::vector<std::unique_ptr<DispatchQueue>> idle;
        for (int i = 0; i < 7; ++i) {
            idle.push_back(
                std::make_unique<DispatchQueue>(QStringLiteral("com.vantropeapp.test.idle-%1").arg(i)));
        }
        std::vector<int> seen;
        std::atomic<int> running{0};
        std::atomic<bool> overlapped{false};
        std::vector<std::thread> producers;
        for (int producer = 0; producer < 4; ++producer) {
            producers.emplace_back([&, producer] {
                for (int i = 0; i < 500; ++i) {
                    queue.async([&, value = producer * 1000 + i] {
                        if (running.fetch_add(1) != 0) {
                            overlapped = true;
                        }
                        seen.push_back(value);
                        // Long enough for a second thread on the same queue to show.
                        std::this_thread::yield();
                        running.fetch_sub(1);
                    });
                }
            });
        }
        for (auto& producer : producers) {
            producer.join();
        }
        queue.drain();
        QVERIFY(!overlapped);
        QCOMPARE(seen.size(), size_t(2000));
        // Each producer's items keep their order.
        std::vector<int> last(4, -1);
        for (int value : seen) {
            const int producer = value / 1000;
            QVERIFY(value % 1000 > last[producer]);
            last[producer] = value % 1000;
        }
    }

    void syncRunsOffTheCallingThreadAndKnowsItsQueue()
    {
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.current"));
        DispatchQueue other(QStringLiteral("com.vantropeapp.test.other"));
        QThread* const caller = QThread::currentThread();
        QVERIFY(queue.syncResult([caller] { return QThread::currentThread() != caller; }));
        QVERIFY(!queue.isCurrent());
        QVERIFY(queue.syncResult([&queue] { return queue.isCurrent(); }));
        // Pool threads serve every queue: being on one says nothing about the others.
        QVERIFY(!queue.syncResult([&other] { return other.isCurrent(); }));
        QVERIFY(!queue.syncResult([] { return DispatchQueue::main().isCurrent(); }));
        QVERIFY(!queue.isCurrent());
        // A nested sync on the queue it already runs on must not deadlock.
        QCOMPARE(queue.syncResult([&queue] { return queue.syncResult([] { return 42; }) + 1; }), 43);
        // A sync from one queue's work onto another runs on the other.
        QCOMPARE(
            queue.syncResult([&other] { return other.syncResult([&other] { return other.isCurrent(); }); }),
            true);
    }

    // Every queue blocks until all of them run at once: a pool with fewer threads than queues would hang.
    void blockedQueuesStillGetThreads_data()
    {
        QTest::addColumn<int>("queues");
        QTest::addColumn<bool>("chained");

        QTest::newRow("two waiting together") << 2 << false;
        QTest::newRow("many more than the cores, waiting together")
            << 4 * std::max(2, QThread::idealThreadCount()) << false;
        // Each queue's work syncs to the next; the last holds them all until every one is in.
        QTest::newRow("a chain of syncs") << 4 * std::max(2, QThread::idealThreadCount()) << true;
    }

    void blockedQueuesStillGetThreads()
    {
        QFETCH(int, queues);
        QFETCH(bool, chained);

        // Shared and never freed: after a failure the stuck queues could not be destroyed.
        auto* all = new std::vector<DispatchQueue*>;
        for (int i = 0; i < queues; ++i) {
            all->push_back(new DispatchQueue(QStringLiteral("com.vantropeapp.test.block-%1").arg(i)));
        }
        auto running = std::make_shared<std::atomic<int>>(0);
        auto finished = std::make_shared<std::atomic<int>>(0);
        const auto allRunning = [running, queues] { return running->load() == queues; };
        auto step = std::make_shared<std::function<void(int)>>();
        if (chained) {
            *step = [all, running, finished, step, queues](int index) {
                ++*running;
                if (index + 1 < queues) {
                    (*all)[size_t(index) + 1]->sync([step, index] { (*step)(index + 1); });
                }
                ++*finished;
            };
            all->front()->async([step] { (*step)(0); });
        } else {
            for (DispatchQueue* queue : *all) {
                queue->async([running, finished, allRunning] {
                    ++*running;
                    if (waitUntil(allRunning)) {
                        ++*finished;
                    }
                });
            }
        }
        QTRY_VERIFY_WITH_TIMEOUT(allRunning(), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(finished->load(), queues, 10000);
        for (DispatchQueue* queue : *all) {
            delete queue;
        }
        delete all;
        *step = nullptr; // it holds itself
    }

    void mainQueueRunsOnTheMainThread()
    {
        bool ran = false;
        QThread* thread = nullptr;
        DispatchQueue::main().async([&] {
            ran = true;
            thread = QThread::currentThread();
        });
        QVERIFY(!ran);
        QTRY_VERIFY(ran);
        QCOMPARE(thread, QThread::currentThread());

        DispatchQueue worker(QStringLiteral("com.vantropeapp.test.hop"));
        // A sync hop from a worker to the main queue while the main thread waits in the event loop.
        std::atomic<bool> hopped{false};
        worker.async(
            [&] { DispatchQueue::main().sync([&] { hopped = QThread::currentThread() == thread; }); });
        QTRY_VERIFY(hopped.load());
    }

    void destructionFinishesQueuedWorkAndDropsDelayedWork()
    {
        std::atomic<int> count{0};
        std::atomic<bool> delayedRan{false};
        {
            DispatchQueue queue(QStringLiteral("com.vantropeapp.test.teardown"));
            queue.asyncAfter(50ms, [&delayedRan] { delayedRan = true; });
            for (int i = 0; i < 100; ++i) {
                queue.async([&count] {
                    QThread::usleep(100);
                    ++count;
                });
            }
        }
        QCOMPARE(count.load(), 100);
        QTest::qWait(150);
        QVERIFY(!delayedRan.load());
    }

    void aQueueDestroyedByItsOwnWorkDropsTheRest()
    {
        auto* queue = new DispatchQueue(QStringLiteral("com.vantropeapp.test.self-destroy"));
        std::atomic<bool> destroyed{false};
        std::atomic<bool> laterRan{false};
        Test::LogCapture log;
        // Held until both items are in, so the second is still queued when the first destroys the queue.
        std::atomic<bool> release{false};
        queue->async([&] {
            waitUntil([&] { return release.load(); });
            delete queue;
            destroyed = true;
        });
        queue->async([&laterRan] { laterRan = true; });
        release = true;
        QVERIFY(waitUntil([&] { return destroyed.load(); }));
        QTest::qWait(50);
        QVERIFY(!laterRan.load());
        QVERIFY(log.contains(QStringLiteral("work items still queued: 1")));
    }

    void delayedWorkRunsOnTheQueueAfterItsDelay()
    {
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.delayed"));
        QElapsedTimer timer;
        timer.start();
        std::atomic<qint64> ranAfter{-1};
        std::atomic<bool> onQueue{false};
        queue.asyncAfter(60ms, [&] {
            onQueue = queue.isCurrent();
            ranAfter = timer.elapsed();
        });
        QTRY_VERIFY(ranAfter.load() >= 0);
        QVERIFY(ranAfter.load() >= 59);
        QVERIFY(onQueue.load());
    }

    void groupNotifiesWhenDelayedWorkHasLeft()
    {
        DispatchGroup group;
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.group"));
        std::atomic<int> done{0};
        std::atomic<bool> offQueue{false};
        bool notified = false;
        for (int i = 0; i < 10; ++i) {
            group.enter();
            queue.asyncAfter(std::chrono::milliseconds(i), [&] {
                offQueue = offQueue || !queue.isCurrent();
                ++done;
                group.leave();
            });
        }
        group.notify(DispatchQueue::main(), [&] {
            notified = true;
            QCOMPARE(done.load(), 10);
        });
        QTRY_VERIFY(notified);
        QCOMPARE(group.count(), 0);
        QVERIFY(!offQueue);

        // Nothing in flight: the notification still comes, asynchronously.
        bool idleNotified = false;
        group.notify(DispatchQueue::main(), [&] { idleNotified = true; });
        QVERIFY(!idleNotified);
        QTRY_VERIFY(idleNotified);

        Test::LogCapture log;
        group.leave();
        QCOMPARE(group.count(), 0);
        QVERIFY(log.contains(QStringLiteral("Unbalanced leave()")));
    }
};

QTEST_GUILESS_MAIN(TestDispatchQueue)
#include "TestDispatchQueue.moc"
