#include "Libraries/Core/DispatchGroup.h"
#include "Libraries/Core/DispatchQueue.h"
#include "support/TestSupport.h"

#include <atomic>
#include <QTest>
#include <QThread>
#include <thread>
#include <vector>

using namespace Vantrope;

class TestDispatchQueue final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void runsWorkInOrderOneAtATime()
    {
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.serial"));
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

    void syncRunsOnItsOwnNamedThread()
    {
        DispatchQueue queue(QStringLiteral("com.vantropeapp.test.named"));
        const QString name = queue.syncResult([] { return QThread::currentThread()->objectName(); });
        QCOMPARE(name, QStringLiteral("com.vantropeapp.test.named"));
        QVERIFY(!queue.isCurrent());
        QVERIFY(queue.syncResult([&queue] { return queue.isCurrent(); }));
        // A nested sync on the queue it already runs on must not deadlock.
        QCOMPARE(queue.syncResult([&queue] { return queue.syncResult([] { return 42; }) + 1; }), 43);
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

    void destructionFinishesQueuedWork()
    {
        std::atomic<int> count{0};
        {
            DispatchQueue queue(QStringLiteral("com.vantropeapp.test.teardown"));
            for (int i = 0; i < 100; ++i) {
                queue.async([&count] {
                    QThread::usleep(100);
                    ++count;
                });
            }
        }
        QCOMPARE(count.load(), 100);
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
            queue.asyncAfter(0.001 * i, [&] {
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
