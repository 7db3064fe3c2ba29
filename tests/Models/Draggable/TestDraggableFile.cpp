// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/DispatchQueue.h"
#include "Models/Draggable/DraggableCollection.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggableFileAccessTable.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>
#include <thread>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestDraggableFile final : public QObject {
    Q_OBJECT

    QString path(const QString& name) const { return m_dir.path() + u'/' + name; }
    QUrl url(const QString& name) const { return QUrl::fromLocalFile(path(name)); }
    std::shared_ptr<DraggableFile> restored(const QString& name) const
    {
        return DraggableFile::make(url(name), DraggableFile::Bookmark{url(name), url(name), "bookmark"_ba});
    }
    void watchScopes()
    {
        DraggableFileAccessTable::shared().setScopeHooks([this](const QUrl& url) { m_started.append(url); },
                                                         [this](const QUrl& url) { m_stopped.append(url); });
    }

    QTemporaryDir m_dir;
    QList<QUrl> m_started;
    QList<QUrl> m_stopped;

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_dir.isValid());
        QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)));
        for (const QString& name : {u"plain.txt"_s, u"My File%.txt"_s, u"café.txt"_s}) {
            QVERIFY(Test::writeFile(path(name), "hello"));
        }
    }

    void cleanup()
    {
        DraggableFileAccessTable::shared().setScopeHooks({}, {});
        m_started.clear();
        m_stopped.clear();
    }

    void fromPasteboard_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("expected"); // empty: no item

        const QByteArray dir = m_dir.path().toUtf8();
        QTest::newRow("escapes decoded") << "file://" + dir + "/My%20File%25.txt" << u"My File%.txt"_s;
        QTest::newRow("localhost") << "file://localhost" + dir + "/plain.txt" << u"plain.txt"_s;
        QTest::newRow("dot segments") << "file://" + dir + "/sub/.././plain.txt" << u"plain.txt"_s;
        QTest::newRow("uri-list form") << "# comment\r\nfile://" + dir + "/plain.txt\r\n" << u"plain.txt"_s;
        QTest::newRow("%zz") << "file://" + dir + "/a%zz.txt" << QString();
        QTest::newRow("escape not UTF-8") << "file://" + dir + "/%ff.txt" << QString();
        QTest::newRow("bytes not UTF-8") << "file://" + dir + "/\xff.txt" << QString();
        QTest::newRow("NUL") << "file://" + dir + "/a%00.txt" << QString();
        QTest::newRow("web URL") << "https://example.com/plain.txt"_ba << QString();
        QTest::newRow("other host") << "file://example.com" + dir + "/plain.txt" << QString();
    }

    void fromPasteboard()
    {
        QFETCH(QByteArray, value);
        QFETCH(QString, expected);

        PasteboardItem item;
        item.setData(PasteboardTypes::uriList, value);
        const auto file = DraggableFile::fromPasteboard(item, PasteboardTypes::uriList, DraggableContext{});
        QCOMPARE(bool(file), !expected.isEmpty());
        if (file) {
            QCOMPARE(file->url()->toLocalFile(), path(expected));
            // Every spelling of one file is the same item.
            QCOMPARE(file->cacheKey(), DraggableFile::make(url(expected))->cacheKey());
        }
    }

    void attributesAtCreation_data()
    {
        QTest::addColumn<bool>("vanishes");
        QTest::newRow("existing") << false;
        QTest::newRow("deleted between drag and read") << true;
    }

    void attributesAtCreation()
    {
        QFETCH(bool, vanishes);
        QVERIFY(Test::writeFile(path(u"sized.bin"_s), QByteArray(1234, 'a')));
        struct stat info {};
        QCOMPARE(::stat(QFile::encodeName(path(u"sized.bin"_s)).constData(), &info), 0);
        if (vanishes) {
            QVERIFY(QFile::remove(path(u"sized.bin"_s)));
        }
        const auto item = DraggableFile::make(url(u"sized.bin"_s));
        QVERIFY(item);
        QCOMPARE(item->size(), vanishes ? 0 : 1234);
        QCOMPARE(item->systemFileNumber(), vanishes ? std::nullopt : std::optional<quint64>(info.st_ino));
    }

    void sharedUrlOpensScopeOnceAndClosesWithLastItem()
    {
        watchScopes();
        auto first = restored(u"plain.txt"_s);
        auto second = restored(u"plain.txt"_s);
        first->startAccessingBookmark();
        second->startAccessingBookmark();
        first->startAccessingBookmark(); // a shelf started twice does not count its item twice
        QCOMPARE(m_started, QList<QUrl>{url(u"plain.txt"_s)});
        QCOMPARE(second->accessCount(), 2);
        // An item never started ends without a stop, and takes nothing from the items that were.
        restored(u"plain.txt"_s).reset();
        QCOMPARE(second->accessCount(), 2);

        first.reset();
        QVERIFY(m_stopped.isEmpty());
        QCOMPARE(second->accessCount(), 1);
        second.reset();
        QCOMPARE(m_stopped, QList<QUrl>{url(u"plain.txt"_s)});
        QCOMPARE(DraggableFileAccessTable::shared().count(url(u"plain.txt"_s)), 0);
        restored(u"plain.txt"_s).reset();
        QCOMPARE(m_stopped.size(), 1);

        // Without a bookmark there is nothing to count.
        auto plain = DraggableFile::make(url(u"café.txt"_s));
        plain->startAccessingBookmark();
        QCOMPARE(plain->accessCount(), 0);
        QCOMPARE(m_started.size(), 1);
    }

    void accessTableSurvivesConcurrentItems()
    {
        std::atomic<int> starts = 0;
        std::atomic<int> stops = 0;
        DraggableFileAccessTable::shared().setScopeHooks([&starts](const QUrl&) { ++starts; },
                                                         [&stops](const QUrl&) { ++stops; });
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t) {
            threads.emplace_back([this] {
                for (int i = 0; i < 2000; ++i) {
                    restored(u"plain.txt"_s)->startAccessingBookmark();
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        QCOMPARE(DraggableFileAccessTable::shared().count(url(u"plain.txt"_s)), 0);
        QVERIFY(starts > 0);
        QCOMPARE(stops.load(), starts.load());
    }

    void resolveUrlNeverAnswersForAGoneItem()
    {
        auto item = DraggableFile::make(url(u"plain.txt"_s));
        bool called = false;
        item->resolveUrl([&called](const Draggable::ResolveResult&) { called = true; });
        item.reset();
        DispatchQueue::main().drain();
        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

    void moveToTrash_data()
    {
        QTest::addColumn<bool>("oneVanishes");
        QTest::newRow("all files there") << false;
        QTest::newRow("one vanished") << true;
    }

    void moveToTrash()
    {
        QFETCH(bool, oneVanishes);
        const QString stem = QString::fromLatin1(QTest::currentDataTag()).replace(u' ', u'-');
        DraggableList items;
        for (const QString& name : QStringList{stem + u"-a"_s, stem + u"-b"_s}) {
            QVERIFY(Test::writeFile(path(name), "trash me"));
            items.append(DraggableFile::make(url(name)));
        }
        // A failed promise has no file and must not hold up the rest.
        auto failed = DraggablePromise::make([] { return DraggablePromise::VantropePromiseResult{}; });
        failed->receiveFiles();
        QTRY_COMPARE(failed->receivingState().kind, DraggablePromise::ReceivingState::Kind::error);
        items.append(failed);
        if (oneVanishes) {
            QVERIFY(QFile::remove(path(stem + u"-b"_s)));
        }

        Test::LogCapture log;
        QList<std::expected<void, DraggableError>> outcomes;
        DraggableCollection::moveToTrash(
            items,
            [&outcomes](const std::expected<void, DraggableError>& result) { outcomes.append(result); });
        QTRY_COMPARE(outcomes.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(outcomes.size(), 1);
        QCOMPARE(outcomes.first().has_value(), !oneVanishes);
        QVERIFY(log.contains(u"About to delete 3"_s));
        QCOMPARE(log.count(u"Failed to obtain URL for draggable to delete (failing silently): "_s), 1);
        QCOMPARE(log.contains(u"Failed to move items to trash with error "_s), oneVanishes);
        QVERIFY(!QFile::exists(path(stem + u"-a"_s)));
        QVERIFY(QFile::exists(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                              u"/Trash/files/"_s + stem + u"-a"_s));
    }
};

QTEST_MAIN(TestDraggableFile)
#include "TestDraggableFile.moc"
