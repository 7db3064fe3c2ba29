// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/BookmarkStore.h"
#include "Libraries/Core/URL.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestBookmarkStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        m_files = QDir::homePath() + u"/files"_s;
    }

    void init()
    {
        for (int n = 0; n < 5; ++n) {
            QVERIFY(Test::writeFile(file(n).toLocalFile(), QByteArray::number(n)));
        }
        QVERIFY(QDir().mkpath(QDir::homePath() + u"/far/away"_s));
    }

    void cleanup()
    {
        for (const QString& folder :
             QStringList{m_files, QDir::homePath() + u"/far"_s, *URL::groupContainer() + u"/bookmarks"_s}) {
            QDir(folder).removeRecursively();
        }
    }

    void keepsTheNewest_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<int>("added");
        QTest::addColumn<QList<int>>("kept");
        QTest::newRow("screenshot folder") << 1 << 2 << QList<int>{1};
        QTest::newRow("beyond the limit") << 3 << 5 << QList<int>{2, 3, 4};
    }

    void keepsTheNewest()
    {
        QFETCH(int, limit);
        QFETCH(int, added);
        QFETCH(QList<int>, kept);

        BookmarkStore store(u"recent"_s, limit);
        for (int n = 0; n < added; ++n) {
            const auto entry = store.addLocation(file(n));
            QVERIFY(entry.has_value());
            QCOMPARE(entry->url, file(n));
        }
        QList<QUrl> expected;
        for (int n : kept) {
            expected.append(file(n));
        }
        QCOMPARE(urls(store.locations()), expected);
        // Another store of the same namespace reads what this one wrote.
        QCOMPARE(urls(BookmarkStore(u"recent"_s, limit).bookmarks()), expected);
    }

    void addingAgainReplaces_data()
    {
        QTest::addColumn<bool>("renamedFirst");
        QTest::newRow("same path") << false;
        QTest::newRow("same file under a new name") << true;
    }

    void addingAgainReplaces()
    {
        QFETCH(bool, renamedFirst);
        BookmarkStore store(u"recent"_s, 5);
        QVERIFY(store.addLocation(file(0)) && store.addLocation(file(1)));
        QUrl again = file(0);
        if (renamedFirst) {
            again = QUrl::fromLocalFile(m_files + u"/renamed.txt"_s);
            QVERIFY(QFile::rename(file(0).toLocalFile(), again.toLocalFile()));
        }
        QVERIFY(store.addLocation(again));
        QCOMPARE(urls(store.bookmarks()), (QList<QUrl>{file(1), again}));
    }

    void namespacesAreSeparate()
    {
        BookmarkStore screenshots(u"user-screenshot"_s, 1);
        BookmarkStore escaping(u"../user-screenshot"_s, 1);
        QVERIFY(screenshots.addLocation(file(0)) && escaping.addLocation(file(1)));
        const QString folder = *URL::groupContainer() + u"/bookmarks"_s;
        QCOMPARE(screenshots.filePath(), folder + u"/user-screenshot.json"_s);
        QVERIFY(URL::isWithin(QUrl::fromLocalFile(escaping.filePath()), QUrl::fromLocalFile(folder)));
        QCOMPARE(urls(screenshots.bookmarks()), QList<QUrl>{file(0)});
        QCOMPARE(urls(escaping.bookmarks()), QList<QUrl>{file(1)});
    }

    void movedFileIsRefreshed()
    {
        BookmarkStore store(u"recent"_s, 3);
        const auto added = store.addLocation(file(0));
        QVERIFY(added);
        const QUrl moved = QUrl::fromLocalFile(m_files + u"/moved.txt"_s);
        QVERIFY(QFile::rename(file(0).toLocalFile(), moved.toLocalFile()));

        QCOMPARE(urls(store.locations()), QList<QUrl>{moved});
        const QList<BookmarkURL> stored = store.bookmarks();
        QCOMPARE(urls(stored), QList<QUrl>{moved});
        QVERIFY(stored.first().bookmark != added->bookmark);
    }

    void missingFileIsKept()
    {
        BookmarkStore store(u"recent"_s, 3);
        QVERIFY(store.addLocation(file(0)) && store.addLocation(file(1)));
        // Beyond the places a resolve looks at, as if its drive were unmounted.
        const QString away = QDir::homePath() + u"/far/away/file.txt"_s;
        QVERIFY(QFile::rename(file(0).toLocalFile(), away));

        Test::LogCapture log;
        QCOMPARE(urls(store.locations()), QList<QUrl>{file(1)});
        QVERIFY(log.contains(u"Leaving out"_s));
        QCOMPARE(store.bookmarks().size(), 2);

        QVERIFY(QFile::rename(away, file(0).toLocalFile()));
        QCOMPARE(urls(store.locations()), (QList<QUrl>{file(0), file(1)}));
    }

    void corruptFileIsSetAside_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("not JSON") << QByteArray("{\"version\": 1, \"bookm");
        QTest::newRow("entries not a list") << QByteArray("{\"version\": 1, \"bookmarks\": \"x\"}");
        QTest::newRow("newer version") << QByteArray("{\"version\": 2, \"bookmarks\": []}");
        QTest::newRow("bad base64") << QByteArray(
            "{\"version\": 1, \"bookmarks\": [{\"url\": \"file:///a\", \"data\": \"!!\"}]}");
        QTest::newRow("remote url") << QByteArray(
            "{\"version\": 1, \"bookmarks\": [{\"url\": \"https://a\", \"data\": \"AAAA\"}]}");
    }

    void corruptFileIsSetAside()
    {
        QFETCH(QByteArray, contents);
        BookmarkStore store(u"recent"_s, 3);
        QVERIFY(Test::writeFile(store.filePath(), contents));

        Test::LogCapture log;
        QVERIFY(store.locations().isEmpty());
        QVERIFY(log.contains(store.filePath()));

        QVERIFY(store.addLocation(file(0)));
        QCOMPARE(urls(store.bookmarks()), QList<QUrl>{file(0)});
        const QFileInfoList setAside = QFileInfo(store.filePath()).dir().entryInfoList({u"*.corrupt-*"_s});
        QCOMPARE(setAside.size(), 1);
        QCOMPARE(Test::readFile(setAside.first().filePath()), contents);
    }

    void clearAndFailedAdd()
    {
        BookmarkStore store(u"recent"_s, 3);
        QVERIFY(store.addLocation(file(0)));
        const auto failed = store.addLocation(QUrl::fromLocalFile(m_files + u"/never-written.txt"_s));
        QVERIFY(!failed);
        QCOMPARE(failed.error().kind, BookmarkStore::Error::Kind::bookmarkFailed);
        QCOMPARE(urls(store.bookmarks()), QList<QUrl>{file(0)});

        QVERIFY(store.clear());
        QVERIFY(BookmarkStore(u"recent"_s, 3).bookmarks().isEmpty());
    }

private:
    QUrl file(int n) const { return QUrl::fromLocalFile(m_files + u"/file-%1.txt"_s.arg(n)); }
    static QList<QUrl> urls(const QList<BookmarkURL>& entries)
    {
        QList<QUrl> result;
        for (const BookmarkURL& entry : entries) {
            result.append(entry.url);
        }
        return result;
    }

    QString m_files;
};

QTEST_GUILESS_MAIN(TestBookmarkStore)
#include "TestBookmarkStore.moc"
