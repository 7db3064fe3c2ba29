// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "Libraries/Core/FileBookmark.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

const QString decodeFailure =
    u"Failed to decode observed directories loaded from disk, returning an empty array..."_s;

// A stored folder as the current version writes it.
QJsonObject storedEntry(const QString& identifier = u"6B1F3A52-9C1E-4F00-8D1A-2B7C1D4E5F60"_s)
{
    return QJsonObject{
        {u"identifier"_s, identifier},
        {u"url"_s, u"file:///home/someone/Downloads"_s},
        {u"bookmarkData"_s, QString::fromLatin1(QByteArray("opaque").toBase64())},
        {u"matchers"_s, QJsonArray()},
        {u"filters"_s,
         QJsonArray{QJsonObject{
             {u"operatorType"_s, u"or"_s},
             {u"matcher"_s, QJsonObject{{u"fileName"_s, QJsonObject{{u"endsWith"_s, u".pdf"_s}}}}}}}},
        {u"options"_s, QJsonObject{{u"appendsToInitialShelf"_s, true},
                                   {u"rulesCaseSensitive"_s, false},
                                   {u"observesNestedDirectories"_s, true}}},
        {u"lifecycle"_s, QJsonObject{{u"isSecureScoped"_s, false}, {u"isStopped"_s, false}}},
    };
}

QByteArray fileOf(const QJsonObject& entry)
{
    return QJsonDocument(QJsonArray{entry}).toJson();
}

} // namespace

class TestObservedDirectoryStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void decode_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("items");
        QTest::addColumn<int>("filters");
        QTest::addColumn<int>("matchers");

        QJsonObject older = storedEntry();
        older.remove(u"filters"_s);
        older.insert(u"matchers"_s,
                     QJsonArray{QJsonObject{{u"kind"_s, QJsonObject{{u"equals"_s, u"image"_s}}}}});
        QJsonObject noMatchers = storedEntry();
        noMatchers.remove(u"matchers"_s);
        QJsonObject unknownRule = storedEntry();
        unknownRule.insert(
            u"filters"_s,
            QJsonArray{QJsonObject{
                {u"operatorType"_s, u"and"_s},
                {u"matcher"_s, QJsonObject{{u"fileColour"_s, QJsonObject{{u"equals"_s, u"red"_s}}}}}}});
        QJsonObject noOptions = storedEntry();
        noOptions.remove(u"options"_s);
        QTest::newRow("no file") << QByteArray() << 0 << 0 << 0;
        QTest::newRow("current") << fileOf(storedEntry()) << 1 << 1 << 0;
        QTest::newRow("older, matchers only") << fileOf(older) << 1 << 0 << 1;
        QTest::newRow("no matchers") << fileOf(noMatchers) << 0 << 0 << 0;
        QTest::newRow("unknown rule key") << fileOf(unknownRule) << 0 << 0 << 0;
        QTest::newRow("no options") << fileOf(noOptions) << 0 << 0 << 0;
        QTest::newRow("one bad entry spoils the file")
            << QJsonDocument(QJsonArray{storedEntry(), noOptions}).toJson() << 0 << 0 << 0;
        QTest::newRow("not JSON") << QByteArray("\x89PNG garbage") << 0 << 0 << 0;
    }

    void decode()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, items);
        QFETCH(int, filters);
        QFETCH(int, matchers);

        QTemporaryDir dir;
        const QString path = dir.filePath(u".observed_directories"_s);
        QVERIFY(content.isEmpty() || Test::writeFile(path, content));
        Test::LogCapture log;
        const ObservedDirectoryStore store(path, false);
        QCOMPARE(store.items().size(), items);
        QCOMPARE(log.contains(decodeFailure), items == 0 && !content.isEmpty());
        QCOMPARE(log.contains(u"Attempted to load items from disk but we don't have any"_s),
                 content.isEmpty());
        if (items == 1) {
            const ObservedDirectory& item = store.items().first();
            QCOMPARE(item.identifier, u"6B1F3A52-9C1E-4F00-8D1A-2B7C1D4E5F60"_s);
            QCOMPARE(item.url, QUrl::fromLocalFile(u"/home/someone/Downloads"_s));
            QCOMPARE(item.bookmarkData, QByteArray("opaque"));
            QCOMPARE(item.filters.size(), filters);
            QCOMPARE(item.matchers.size(), matchers);
            QVERIFY(item.options.observesNestedDirectories);
        }
        // Loading alone never touches the file.
        QCOMPARE(Test::readFile(path), content);
    }

    void theNextSaveKeepsAnUndecodableFileAside()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u".observed_directories"_s);
        const QByteArray damaged("[{\"identifier\": \"half a record");
        QVERIFY(Test::writeFile(path, damaged));
        ObservedDirectoryStore store(path, false);
        QVERIFY(store.saveItem(ObservedDirectory::make(QUrl::fromLocalFile(dir.path()), "bookmark")));

        QCOMPARE(ObservedDirectoryStore(path, false).items().size(), 1);
        const QStringList kept =
            QDir(dir.path()).entryList({u".observed_directories.corrupt-*"_s}, QDir::Files | QDir::Hidden);
        QCOMPARE(kept.size(), 1);
        QCOMPARE(Test::readFile(dir.filePath(kept.first())), damaged);
    }

    void saveReplacesInPlaceAndDeleteRemoves()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u".observed_directories"_s);
        ObservedDirectoryStore store(path, false);
        QSignalSpy updates(&store, &ObservedDirectoryStore::didUpdateItems);

        ObservedDirectory first = ObservedDirectory::make(QUrl::fromLocalFile(dir.filePath(u"a"_s)), "a");
        const ObservedDirectory second =
            ObservedDirectory::make(QUrl::fromLocalFile(dir.filePath(u"b"_s)), "b");
        QCOMPARE(first.identifier, first.identifier.toUpper());
        QVERIFY(!QUuid::fromString(first.identifier).isNull());
        QVERIFY(store.saveItem(first));
        QVERIFY(store.saveItem(second));
        first.options.appendsToInitialShelf = false;
        first.filters = {{DirectoryObserverFilter::OperatorType::And,
                          DirectoryObserverItemMatcher::fileSize(
                              {DirectoryObserverItemMatcher::SizeMatching::Comparison::lessThan, 1048576})}};
        QVERIFY(store.saveItem(first));
        QCOMPARE(updates.count(), 0);
        QTRY_COMPARE(updates.count(), 3);

        const QList<ObservedDirectory> expected{first, second};
        QCOMPARE(store.items(), expected);
        QCOMPARE(ObservedDirectoryStore(path, false).items(), expected);

        Test::LogCapture log;
        ObservedDirectory unknown = first;
        unknown.identifier = u"00000000-0000-0000-0000-000000000000"_s;
        QVERIFY(!store.deleteItem(unknown));
        QVERIFY(log.contains(u"Attempted to delete an item that does not exist"_s));
        QVERIFY(store.deleteItem(first));
        QCOMPARE(ObservedDirectoryStore(path, false).items(), QList<ObservedDirectory>{second});
        QTRY_COMPARE(updates.count(), 4);
    }

    void bookmarksAreResolvedAtLoad()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(u".observed_directories"_s);
        const QUrl folder = QUrl::fromLocalFile(dir.filePath(u"Downloads"_s));
        QVERIFY(QDir().mkpath(folder.toLocalFile()));

        ObservedDirectory resolvable = ObservedDirectory::make(folder, FileBookmark::create(folder).value());
        resolvable.matchers = {DirectoryObserverItemMatcher::kind(
            {DirectoryObserverItemMatcher::KindMatching::Comparison::equals,
             DirectoryObserverItemMatcher::KindMatching::Kind::pdf})};
        ObservedDirectory broken = ObservedDirectory::make(folder, "not a bookmark");
        broken.matchers = resolvable.matchers;
        {
            ObservedDirectoryStore writer(path, false);
            QVERIFY(writer.saveItem(resolvable) && writer.saveItem(broken));
        }

        Test::LogCapture log;
        const QList<ObservedDirectory> items = ObservedDirectoryStore(path, true).items();
        QCOMPARE(items.size(), 2);
        QVERIFY(items[0].lifecycle.isSecureScoped);
        QVERIFY(items[0].matchers.isEmpty());
        QCOMPARE(items[0].url, folder);
        QCOMPARE(items[1], broken);
        QCOMPARE(log.count(u"Failed to resolve bookmark data for item "_s), 1);
    }
};

QTEST_GUILESS_MAIN(TestObservedDirectoryStore)
#include "TestObservedDirectoryStore.moc"
