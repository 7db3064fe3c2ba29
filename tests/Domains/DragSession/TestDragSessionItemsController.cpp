// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DragSessionItemsController.h"
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "support/FakeFileWatcher.h"
#include "support/OneFilePromiseTransport.h"
#include "support/TestSupport.h"

#include <cstdio>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Change = FileWatcher::Change;
using DeleteBatch = QList<DragSessionItemsController::DeleteContext>;

// Deletions wait on the shelf's clock: a ManualClock that stands still shows what waits, and moving it
// shows what comes of it, without sleeping through the delay.
class TestDragSessionItemsController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        // Qt's trash wants the data folder to exist before it puts anything there.
        QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    }

    void init()
    {
        QVERIFY(m_dir.isValid());
        m_watcher.refuseWatches(std::nullopt);
        m_clock = std::make_unique<ManualClock>();
    }

    void followsWhatBecomesOfItsFile_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("changedTo"); // the file an itemChanged names; empty: none comes
        QTest::addColumn<bool>("deleted");
        QTest::addColumn<QString>("logLine");
        QTest::newRow("renamed") << u"rename"_s << u"final.txt"_s << false << QString();
        // Saved as editors do: a new file written beside it and renamed over it.
        QTest::newRow("replaced by an editor") << u"replace"_s << u"notes.txt"_s << false << QString();
        QTest::newRow("moved to the trash") << u"trash"_s << QString() << true << QString();
        QTest::newRow("deleted") << u"delete"_s << QString() << true << QString();
        // Made while the file did not exist yet: no file number, so no bookmark to tell what happened.
        QTest::newRow("item older than its file")
            << u"late"_s << QString() << false
            << u"Attempted to reload bookmark, but we dont have an existing one"_s;
    }

    void followsWhatBecomesOfItsFile()
    {
        QFETCH(QString, change);
        QFETCH(QString, changedTo);
        QFETCH(bool, deleted);
        QFETCH(QString, logLine);

        DragSessionItemsController controller(*m_clock, m_watcher);
        QSignalSpy changes(&controller, &DragSessionItemsController::itemChanged);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        const QString path = m_dir.filePath(u"notes.txt"_s);
        QFile::remove(path);
        DraggablePtr item;
        if (change == u"late"_s) {
            item = DraggableFile::make(QUrl::fromLocalFile(path));
            QVERIFY(!item->systemFileNumber());
            QVERIFY(Test::writeFile(path, "now here"));
            controller.addItems({item});
            QTRY_VERIFY(controller.isObserving(item->cacheKey()));
        } else {
            item = addProcessed(controller, u"notes.txt"_s);
            QVERIFY(item);
            QVERIFY(controller.bookmark(*item->systemFileNumber()));
        }

        Test::LogCapture log;
        Change reported = Change::deleted;
        if (change == u"rename"_s) {
            QVERIFY(QFile::rename(path, m_dir.filePath(changedTo)));
            reported = Change::moved;
        } else if (change == u"replace"_s) {
            const QString temporary = m_dir.filePath(u".notes.txt.swp"_s);
            QVERIFY(Test::writeFile(temporary, "new contents"));
            QCOMPARE(::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()),
                     0);
        } else if (change == u"trash"_s) {
            QVERIFY(QFile::moveToTrash(path));
            reported = Change::moved;
        } else {
            QVERIFY(QFile::remove(path));
        }
        QVERIFY(m_watcher.report(path, reported));
        settle();

        QCOMPARE(changes.size(), changedTo.isEmpty() ? 0 : 1);
        if (!changedTo.isEmpty()) {
            const auto context =
                changes.first().first().value<DragSessionItemsController::ItemChangeContext>();
            QCOMPARE(context.newUrl, QUrl::fromLocalFile(m_dir.filePath(changedTo)));
            QCOMPARE(context.oldUrl, QUrl::fromLocalFile(path));
            QCOMPARE(context.draggable.get(), item.get());
        }
        if (!logLine.isEmpty()) {
            QVERIFY(log.contains(logLine));
        }
        // A deletion waits for the clock, and only a deletion does.
        QCOMPARE(m_clock->pendingCount(), deleted ? 1 : 0);
        QCOMPARE(deletions.size(), 0);
        m_clock->advance(DragSessionItemsController::pendingDeletesDelay);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(deletions.size(), deleted ? 1 : 0);
        if (deleted) {
            const auto batch = deletions.first().first().value<DeleteBatch>();
            QCOMPARE(batch.size(), 1);
            QCOMPARE(batch.first().draggable.get(), item.get());
        }
        QCOMPARE(controller.items().size(), 1);
    }

    void deletionsWithinTheDelayComeAsOneBatch()
    {
        DragSessionItemsController controller(*m_clock, m_watcher);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        for (int i = 0; i < 11; ++i) {
            QVERIFY(addProcessed(controller, u"file-%1.txt"_s.arg(i)));
        }
        const auto remove = [this](int i) {
            const QString path = m_dir.filePath(u"file-%1.txt"_s.arg(i));
            return QFile::remove(path) && m_watcher.report(path, Change::deleted);
        };
        for (int i = 0; i < 10; ++i) {
            QVERIFY(remove(i));
        }
        settle();
        m_clock->advance(DragSessionItemsController::pendingDeletesDelay);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(deletions.size(), 1);
        QCOMPARE(deletions.first().first().value<DeleteBatch>().size(), 10);

        // Once the batch has gone, the next deletion starts another.
        QVERIFY(remove(10));
        settle();
        m_clock->advance(DragSessionItemsController::pendingDeletesDelay);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(deletions.size(), 2);
        QCOMPARE(deletions.last().first().value<DeleteBatch>().size(), 1);
    }

    void removingAnItemHeldTwiceRemovesBoth()
    {
        DragSessionItemsController controller(*m_clock, m_watcher);
        const auto first = addProcessed(controller, u"twice.txt"_s);
        const auto other = addProcessed(controller, u"other.txt"_s);
        QVERIFY(first && other);
        const auto second = DraggableFile::make(first->url().value());
        controller.addItems({second, other});
        const quint64 before = controller.changeCount();
        QCOMPARE(controller.items().size(), 4);

        controller.remove(second);
        QCOMPARE(controller.items().size(), 2);
        QCOMPARE(controller.changeCount(), before + 2);
        QVERIFY(!controller.isObserving(first->cacheKey()));
        QVERIFY(!m_watcher.isWatched(first->url()->toLocalFile()));
        QVERIFY(m_watcher.isWatched(other->url()->toLocalFile()));
        // Removing what is not there changes nothing.
        controller.remove(second);
        QCOMPARE(controller.changeCount(), before + 2);

        controller.removeAllItems();
        QVERIFY(controller.items().isEmpty());
        QCOMPARE(controller.changeCount(), before + 4);
        QVERIFY(!m_watcher.isWatched(other->url()->toLocalFile()));
    }

    void refusedWatch_data()
    {
        QTest::addColumn<bool>("limitReached");
        QTest::addColumn<QString>("logLine");
        QTest::addColumn<bool>("deleted");
        // Out of watches, the file may well be there: dropping it would lose the user's item.
        QTest::newRow("watch limit reached") << true << u"Not following"_s << false;
        QTest::newRow("file gone before it was watched")
            << false << u"Failed to open file descriptor"_s << true;
    }

    void refusedWatch()
    {
        QFETCH(bool, limitReached);
        QFETCH(QString, logLine);
        QFETCH(bool, deleted);

        m_watcher.refuseWatches(FileWatcher::Error{{}, u"refused by the test"_s, limitReached});
        DragSessionItemsController controller(*m_clock, m_watcher);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        Test::LogCapture log;
        const QString path = m_dir.filePath(u"fleeting.txt"_s);
        QVERIFY(Test::writeFile(path, "soon gone"));
        const auto item = DraggableFile::make(QUrl::fromLocalFile(path));
        controller.addItems({item});
        // The bookmark is made on a worker; the watch is asked for on this thread's next turn, which
        // comes only once the file is gone.
        const QDeadlineTimer deadline(5000);
        while (!controller.bookmark(*item->systemFileNumber()) && !deadline.hasExpired()) {
            QThread::msleep(5);
        }
        QVERIFY(controller.bookmark(*item->systemFileNumber()));
        QVERIFY(QFile::remove(path));

        QTRY_VERIFY(controller.processingItems().isEmpty());
        QTRY_VERIFY(log.contains(logLine));
        QVERIFY(!controller.isObserving(item->cacheKey()));
        m_watcher.refuseWatches(std::nullopt);
        settle();
        QCOMPARE(m_clock->pendingCount(), deleted ? 1 : 0);
        m_clock->advance(DragSessionItemsController::pendingDeletesDelay);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(deletions.size(), deleted ? 1 : 0);
        QCOMPARE(controller.items().size(), 1);
    }

    void promiseIsProcessedOnlyWhenReceived_data()
    {
        QTest::addColumn<bool>("delivers");
        QTest::newRow("received") << true;
        QTest::newRow("failed") << false;
    }

    void promiseIsProcessedOnlyWhenReceived()
    {
        QFETCH(bool, delivers);
        DragSessionItemsController controller(*m_clock, m_watcher);
        Test::LogCapture log;
        auto promise = DraggablePromise::make(std::make_unique<Test::OneFilePromiseTransport>(delivers));
        controller.addItems({promise});
        QCOMPARE(controller.processingItems().size(), 1);

        promise->receiveFiles();
        QTRY_VERIFY(controller.processingItems().isEmpty());
        QCOMPARE(controller.items().size(), 1);
        QCOMPARE(log.contains(u"Promise failed to receive, will not process item"_s), !delivers);
        if (delivers) {
            QTRY_VERIFY(controller.isObserving(promise->cacheKey()));
        }
    }

    void closedShelfDropsPendingWork()
    {
        auto controller = std::make_unique<DragSessionItemsController>(*m_clock, m_watcher);
        QSignalSpy deletions(controller.get(), &DragSessionItemsController::itemsDeleted);
        QVERIFY(addProcessed(*controller, u"closing.txt"_s));
        const QString path = m_dir.filePath(u"closing.txt"_s);
        QVERIFY(QFile::remove(path));
        QVERIFY(m_watcher.report(path, Change::deleted));
        settle();
        QCOMPARE(m_clock->pendingCount(), 1);

        // The deletion's time comes after the shelf has gone: nothing may reach what is left of it.
        controller.reset();
        m_clock->advance(DragSessionItemsController::pendingDeletesDelay);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(deletions.size(), 0);
    }

private:
    DraggablePtr addProcessed(DragSessionItemsController& controller, const QString& name)
    {
        const QString path = m_dir.filePath(name);
        Test::writeFile(path, "some bytes");
        auto item = DraggableFile::make(QUrl::fromLocalFile(path));
        controller.addItems({item});
        // Null when the file never came under watch, which fails the caller.
        const bool observed = QTest::qWaitFor([&] { return controller.isObserving(item->cacheKey()); }, 5000);
        return observed ? item : nullptr;
    }

    // Returns once every file event reported so far has been handled, up to a deletion waiting on the
    // clock and what was posted to this thread. Every shelf shares the serial queues behind its file
    // events, so the deletion of a marker file reported now, to a shelf on a clock of its own, is
    // scheduled only after all of that.
    void settle()
    {
        ManualClock markerClock;
        DragSessionItemsController marker(markerClock, m_watcher);
        const QString name = u"marker-%1.txt"_s.arg(++m_markers);
        QVERIFY(addProcessed(marker, name));
        QVERIFY(QFile::remove(m_dir.filePath(name)));
        QVERIFY(m_watcher.report(m_dir.filePath(name), Change::deleted));
        QTRY_COMPARE(markerClock.pendingCount(), 1);
        QCoreApplication::sendPostedEvents();
    }

    QTemporaryDir m_dir;
    Test::FakeFileWatcher m_watcher;
    std::unique_ptr<ManualClock> m_clock;
    int m_markers = 0;
};

QTEST_GUILESS_MAIN(TestDragSessionItemsController)
#include "TestDragSessionItemsController.moc"
