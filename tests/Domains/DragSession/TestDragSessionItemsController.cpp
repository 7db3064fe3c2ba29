#include "Domains/DragSession/DragSessionItemsController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/FilePromiseTransport.h"
#include "support/FakeFileWatcher.h"
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

namespace {

// A drag source that writes one file into the folder it is given, or reports that it could not.
class OneFileTransport final : public FilePromiseTransport {
public:
    explicit OneFileTransport(bool delivers)
        : m_delivers(delivers)
    {}
    QStringList fileNames() const override { return {QStringLiteral("promised.txt")}; }
    QStringList fileTypes() const override { return {}; }
    void receive(const QString& destination, FileHandler onFile, FinishedHandler onFinished) override
    {
        const QString path = destination + QStringLiteral("/promised.txt");
        if (m_delivers && Test::writeFile(path, "delivered")) {
            onFile(QUrl::fromLocalFile(path));
        } else {
            onFile(std::unexpected(
                DraggableError{DraggableError::Kind::underlying, QStringLiteral("source gave up")}));
        }
        onFinished();
    }

private:
    bool m_delivers;
};

} // namespace

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
    }

    void renameGivesOneChangeWithTheNewUrl()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy changes(&controller, &DragSessionItemsController::itemChanged);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        const auto item = addProcessed(controller, QStringLiteral("draft.txt"));
        QVERIFY(item);
        QVERIFY(controller.bookmark(*item->systemFileNumber()));

        const QString renamed = m_dir.filePath(QStringLiteral("final.txt"));
        QVERIFY(QFile::rename(m_dir.filePath(QStringLiteral("draft.txt")), renamed));
        QVERIFY(m_watcher.report(m_dir.filePath(QStringLiteral("draft.txt")), FileWatcher::Change::moved));
        QTRY_COMPARE(changes.size(), 1);
        const auto context = changes.first().first().value<DragSessionItemsController::ItemChangeContext>();
        QCOMPARE(context.newUrl, QUrl::fromLocalFile(renamed));
        QCOMPARE(context.oldUrl, item->url().value());
        QCOMPARE(context.draggable.get(), item.get());
        // Nothing else follows: no deletion, no second change.
        QTest::qWait(1300);
        QCOMPARE(changes.size(), 1);
        QCOMPARE(deletions.size(), 0);
    }

    void fileReplacedByAnEditorIsFollowed()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy changes(&controller, &DragSessionItemsController::itemChanged);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        const auto item = addProcessed(controller, QStringLiteral("notes.txt"));
        QVERIFY(item);
        // Save as editors do: write a new file beside it and rename it over the old one.
        const QString path = m_dir.filePath(QStringLiteral("notes.txt"));
        const QString temporary = m_dir.filePath(QStringLiteral(".notes.txt.swp"));
        QVERIFY(Test::writeFile(temporary, "new contents"));
        QVERIFY(::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(path).constData()) == 0);
        QVERIFY(m_watcher.report(path, FileWatcher::Change::deleted));

        QTRY_COMPARE(changes.size(), 1);
        const auto context = changes.first().first().value<DragSessionItemsController::ItemChangeContext>();
        QCOMPARE(context.newUrl, QUrl::fromLocalFile(path));
        QTest::qWait(1300);
        QCOMPARE(deletions.size(), 0);
    }

    void trashIsADeletion()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy changes(&controller, &DragSessionItemsController::itemChanged);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        const auto item = addProcessed(controller, QStringLiteral("old.txt"));
        QVERIFY(item);
        QVERIFY(QFile::moveToTrash(m_dir.filePath(QStringLiteral("old.txt"))));
        QVERIFY(m_watcher.report(m_dir.filePath(QStringLiteral("old.txt")), FileWatcher::Change::moved));
        QTRY_COMPARE_WITH_TIMEOUT(deletions.size(), 1, 5000);
        const auto batch =
            deletions.first().first().value<QList<DragSessionItemsController::DeleteContext>>();
        QCOMPARE(batch.size(), 1);
        QCOMPARE(batch.first().draggable.get(), item.get());
        QCOMPARE(changes.size(), 0);
    }

    void deletionsWithinASecondComeAsOneBatch()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        for (int i = 0; i < 10; ++i) {
            QVERIFY(addProcessed(controller, QStringLiteral("file-%1.txt").arg(i)));
        }
        for (int i = 0; i < 10; ++i) {
            const QString path = m_dir.filePath(QStringLiteral("file-%1.txt").arg(i));
            QVERIFY(QFile::remove(path));
            QVERIFY(m_watcher.report(path, FileWatcher::Change::deleted));
        }
        QTRY_COMPARE_WITH_TIMEOUT(deletions.size(), 1, 5000);
        QTest::qWait(1300);
        QCOMPARE(deletions.size(), 1);
        QCOMPARE(deletions.first().first().value<QList<DragSessionItemsController::DeleteContext>>().size(),
                 10);
    }

    void removingAnItemHeldTwiceRemovesBoth()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        const auto first = addProcessed(controller, QStringLiteral("twice.txt"));
        const auto other = addProcessed(controller, QStringLiteral("other.txt"));
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

    void itemWithoutFileNumberStaysWhenDeleted()
    {
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy deletions(&controller, &DragSessionItemsController::itemsDeleted);
        // Made while the file did not exist yet: it has no file number, so no bookmark can be found for it.
        const QString path = m_dir.filePath(QStringLiteral("late.txt"));
        const auto item = DraggableFile::make(QUrl::fromLocalFile(path));
        QVERIFY(!item->systemFileNumber());
        QVERIFY(Test::writeFile(path, "now here"));

        Test::LogCapture log;
        controller.addItems({item});
        QTRY_VERIFY(controller.processingItems().isEmpty());
        QTRY_VERIFY(controller.isObserving(item->cacheKey()));
        QVERIFY(QFile::remove(path));
        QVERIFY(m_watcher.report(path, FileWatcher::Change::deleted));
        QTRY_VERIFY(
            log.contains(QStringLiteral("Attempted to reload bookmark, but we dont have an existing one")));
        QTest::qWait(1300);
        QCOMPARE(deletions.size(), 0);
        QCOMPARE(controller.items().size(), 1);
    }

    void refusedWatch_data()
    {
        QTest::addColumn<bool>("limitReached");
        QTest::addColumn<QString>("logLine");
        QTest::addColumn<int>("deletions");
        // Out of watches, the file may well be there: dropping it would lose the user's item.
        QTest::newRow("watch limit reached") << true << QStringLiteral("Not following") << 0;
        QTest::newRow("file gone before it was watched")
            << false << QStringLiteral("Failed to open file descriptor") << 1;
    }

    void refusedWatch()
    {
        QFETCH(bool, limitReached);
        QFETCH(QString, logLine);
        QFETCH(int, deletions);

        m_watcher.refuseWatches(FileWatcher::Error{{}, QStringLiteral("refused by the test"), limitReached});
        DragSessionItemsController controller(Clock::system(), m_watcher);
        QSignalSpy deleted(&controller, &DragSessionItemsController::itemsDeleted);
        Test::LogCapture log;
        const QString path = m_dir.filePath(QStringLiteral("fleeting.txt"));
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
        if (deletions > 0) {
            QTRY_COMPARE_WITH_TIMEOUT(deleted.size(), deletions, 5000);
        } else {
            QTest::qWait(1300);
            QCOMPARE(deleted.size(), 0);
        }
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
        DragSessionItemsController controller(Clock::system(), m_watcher);
        Test::LogCapture log;
        auto promise = DraggablePromise::make(std::make_unique<OneFileTransport>(delivers));
        controller.addItems({promise});
        QCOMPARE(controller.processingItems().size(), 1);

        promise->receiveFiles();
        QTRY_VERIFY(controller.processingItems().isEmpty());
        QCOMPARE(controller.items().size(), 1);
        QCOMPARE(log.contains(QStringLiteral("Promise failed to receive, will not process item")), !delivers);
        if (delivers) {
            QTRY_VERIFY(controller.isObserving(promise->cacheKey()));
        }
    }

    void closedShelfDropsPendingWork()
    {
        QSignalSpy* spy = nullptr;
        {
            auto controller = std::make_unique<DragSessionItemsController>(Clock::system(), m_watcher);
            spy = new QSignalSpy(controller.get(), &DragSessionItemsController::itemsDeleted);
            QVERIFY(addProcessed(*controller, QStringLiteral("closing.txt")));
            const QString path = m_dir.filePath(QStringLiteral("closing.txt"));
            QVERIFY(QFile::remove(path));
            QVERIFY(m_watcher.report(path, FileWatcher::Change::deleted));
        }
        QTest::qWait(1500);
        QCOMPARE(spy->size(), 0);
        delete spy;
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

    QTemporaryDir m_dir;
    Test::FakeFileWatcher m_watcher;
};

QTEST_GUILESS_MAIN(TestDragSessionItemsController)
#include "TestDragSessionItemsController.moc"
