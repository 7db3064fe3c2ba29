// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/ThreadPoolJob.h"
#include "support/TestSupport.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <memory>
#include <QDeadlineTimer>
#include <QMutex>
#include <QTest>
#include <QThread>
#include <stdexcept>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

// For the work's side, where no event loop runs.
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

// What the work saw, shared with it because it may outlive the job.
struct WorkState {
    std::atomic<int> runs{0};
    std::atomic<bool> sawCancel{false};
    std::atomic<bool> returned{false};
};

// What the job said, in order.
struct Record {
    QMutex mutex;
    QStringList events;
    QList<QThread*> threads;
    int finished = 0;
    int failed = 0;
    std::optional<Job::Error> error;
    std::atomic<bool> ended{false};

    void add(const QString& event)
    {
        QMutexLocker lock(&mutex);
        events.append(event);
        threads.append(QThread::currentThread());
    }

    void listen(Job* job)
    {
        QObject::connect(job, &Job::progressed, job, [this](double fraction, const QString& title) {
            add(QString::number(fraction) + QLatin1Char(' ') + title);
        });
        QObject::connect(job, &Job::finished, job, [this](const QVariant& result) {
            ++finished;
            add(QStringLiteral("finished ") + result.toString());
            ended = true;
        });
        QObject::connect(job, &Job::failed, job, [this](const Job::Error& failure) {
            ++failed;
            error = failure;
            add(QStringLiteral("failed ") + failure.message);
            ended = true;
        });
    }
};

} // namespace

class TestThreadPoolJob final : public QObject {
    Q_OBJECT

public:
    enum class CancelPoint { beforeStart, waitingForAThread, running, afterFinishing };

private Q_SLOTS:
    void reportsProgressInOrderThenFinishesOnItsThread_data()
    {
        QTest::addColumn<bool>("onAnotherThread");
        QTest::newRow("started on the main thread") << false;
        QTest::newRow("started on a thread of its own") << true;
    }

    void reportsProgressInOrderThenFinishesOnItsThread()
    {
        QFETCH(bool, onAnotherThread);

        QThread thread;
        QObject* home = new QObject;
        if (onAnotherThread) {
            thread.start();
            home->moveToThread(&thread);
        }
        QThread* const expectedThread = onAnotherThread ? &thread : QThread::currentThread();
        auto state = std::make_shared<WorkState>();
        Record record;
        ThreadPoolJob<int>* job = nullptr;
        QMetaObject::invokeMethod(
            home,
            [&record, &job, home, state] {
                job = new ThreadPoolJob<int>(
                    [state](JobContext& context) -> ThreadPoolJob<int>::Outcome {
                        ++state->runs;
                        context.reportProgress(-0.5);
                        context.reportProgress(std::nan(""), QStringLiteral("dropped"));
                        context.reportProgress(0.25, QStringLiteral("reading"));
                        context.reportProgress(0.5);
                        context.reportProgress(1.5, QStringLiteral("writing"));
                        return 42;
                    },
                    nullptr, home);
                record.listen(job);
                job->start();
                job->start();
            },
            Qt::QueuedConnection);
        QTRY_VERIFY(record.ended.load());

        // Read and destroyed on the job's own thread.
        Job::State finalState = Job::State::ready;
        std::optional<int> result;
        QMetaObject::invokeMethod(
            home,
            [&] {
                finalState = job->state();
                result = job->result();
                delete home;
            },
            onAnotherThread ? Qt::BlockingQueuedConnection : Qt::DirectConnection);
        thread.quit();
        QVERIFY(thread.wait(10000));

        QCOMPARE(record.events,
                 (QStringList{QStringLiteral("0 "), QStringLiteral("0.25 reading"), QStringLiteral("0.5 "),
                              QStringLiteral("1 writing"), QStringLiteral("finished 42")}));
        QCOMPARE(record.threads, QList<QThread*>(5, expectedThread));
        QCOMPARE(state->runs.load(), 1);
        QCOMPARE(finalState, Job::State::finished);
        QCOMPARE(result, std::optional<int>(42));
    }

    void aJobWithoutValueFinishesWithAnInvalidVariant()
    {
        ThreadPoolJob<void> job([](JobContext&) -> ThreadPoolJob<void>::Outcome { return {}; });
        Record record;
        record.listen(&job);
        QVariant result = QStringLiteral("unset");
        connect(&job, &Job::finished, this, [&result](const QVariant& value) { result = value; });
        job.start();
        QTRY_VERIFY(job.hasEnded());
        QCOMPARE(record.finished, 1);
        QVERIFY(!result.isValid());
    }

    void cancelFailsOnceAndNothingFollows_data()
    {
        QTest::addColumn<CancelPoint>("point");
        QTest::addColumn<int>("runs");
        QTest::addColumn<bool>("cancelled");

        QTest::newRow("before start") << CancelPoint::beforeStart << 0 << true;
        QTest::newRow("while waiting for a thread") << CancelPoint::waitingForAThread << 0 << true;
        // The work goes on to return a value: it must not turn into a success.
        QTest::newRow("while running") << CancelPoint::running << 1 << true;
        QTest::newRow("after finishing") << CancelPoint::afterFinishing << 1 << false;
    }

    void cancelFailsOnceAndNothingFollows()
    {
        QFETCH(CancelPoint, point);
        QFETCH(int, runs);
        QFETCH(bool, cancelled);

        QThreadPool pool;
        pool.setMaxThreadCount(1);
        std::atomic<bool> poolReleased{point != CancelPoint::waitingForAThread};
        if (!poolReleased) {
            pool.start([&poolReleased] { waitUntil([&] { return poolReleased.load(); }); });
        }

        auto state = std::make_shared<WorkState>();
        const bool waitsForCancel = point == CancelPoint::running;
        ThreadPoolJob<int> job(
            [state, waitsForCancel](JobContext& context) -> ThreadPoolJob<int>::Outcome {
                ++state->runs;
                context.reportProgress(0.1);
                if (waitsForCancel) {
                    state->sawCancel = waitUntil([&context] { return context.isCancelled(); });
                    context.reportProgress(0.9);
                }
                state->returned = true;
                return 7;
            },
            &pool);
        Record record;
        record.listen(&job);

        if (point == CancelPoint::beforeStart) {
            job.cancel();
            QCOMPARE(record.failed, 1); // at once, not later
        }
        job.start();
        switch (point) {
        case CancelPoint::beforeStart:
            break;
        case CancelPoint::waitingForAThread:
            job.cancel();
            poolReleased = true;
            break;
        case CancelPoint::running:
            QTRY_VERIFY(record.events.contains(QStringLiteral("0.1 ")));
            job.cancel();
            QCOMPARE(record.failed, 1);
            QTRY_VERIFY(state->returned.load());
            QVERIFY(state->sawCancel.load());
            break;
        case CancelPoint::afterFinishing:
            QTRY_COMPARE(record.finished, 1);
            job.cancel();
            break;
        }
        QVERIFY(pool.waitForDone(10000));
        QTest::qWait(50); // anything the work posted has arrived by now

        QCOMPARE(state->runs.load(), runs);
        QCOMPARE(record.finished, cancelled ? 0 : 1);
        QCOMPARE(record.failed, cancelled ? 1 : 0);
        QCOMPARE(job.state(), cancelled ? Job::State::failed : Job::State::finished);
        if (cancelled) {
            QVERIFY(record.error && record.error->isCancelled());
            QCOMPARE(job.error(), record.error);
            QCOMPARE(record.events.last(), QStringLiteral("failed Cancelled"));
            QVERIFY(!job.result());
        }
    }

    void failuresArriveAsValues_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("logged");

        QTest::newRow("returned") << 0 << QStringLiteral("disk full") << false;
        QTest::newRow("std::exception thrown") << 1 << QStringLiteral("boom") << true;
        QTest::newRow("something else thrown") << 2 << QStringLiteral("Unknown failure") << true;
    }

    void failuresArriveAsValues()
    {
        QFETCH(int, how);
        QFETCH(QString, message);
        QFETCH(bool, logged);

        Test::LogCapture log;
        ThreadPoolJob<QString> job([how](JobContext&) -> ThreadPoolJob<QString>::Outcome {
            switch (how) {
            case 1:
                throw std::runtime_error("boom");
            case 2:
                throw 7;
            default:
                return std::unexpected(Job::Error::failure(QStringLiteral("disk full")));
            }
        });
        Record record;
        record.listen(&job);
        job.start();
        QTRY_VERIFY(job.hasEnded());
        QTest::qWait(20);

        QCOMPARE(record.failed, 1);
        QCOMPARE(record.finished, 0);
        QCOMPARE(record.error, std::optional(Job::Error::failure(message)));
        QCOMPARE(log.contains(QStringLiteral("Background work threw")), logged);
    }

    void destroyingARunningJobStopsItsWorkSafely()
    {
        auto state = std::make_shared<WorkState>();
        auto started = std::make_shared<std::atomic<bool>>(false);
        auto* job = new ThreadPoolJob<QString>(
            [state, started](JobContext& context) -> ThreadPoolJob<QString>::Outcome {
                ++state->runs;
                *started = true;
                state->sawCancel = waitUntil([&context] { return context.isCancelled(); });
                // Both go nowhere: the job is gone.
                context.reportProgress(0.5, QStringLiteral("late"));
                state->returned = true;
                return QStringLiteral("late");
            });
        job->start();
        QTRY_VERIFY(started->load());
        delete job;

        // A job made now may take the old one's address; what the old work posts must not reach it. It runs
        // until well after the old work has returned.
        ThreadPoolJob<QString> successor([state](JobContext&) -> ThreadPoolJob<QString>::Outcome {
            waitUntil([&state] { return state->returned.load(); });
            QThread::msleep(50);
            return QStringLiteral("successor");
        });
        Record record;
        record.listen(&successor);
        successor.start();

        QTRY_VERIFY(record.ended.load());
        QVERIFY(state->returned.load());
        QVERIFY(state->sawCancel.load());
        QCOMPARE(state->runs.load(), 1);
        QCOMPARE(record.events, QStringList{QStringLiteral("finished successor")});
    }
};

QTEST_GUILESS_MAIN(TestThreadPoolJob)
#include "TestThreadPoolJob.moc"
