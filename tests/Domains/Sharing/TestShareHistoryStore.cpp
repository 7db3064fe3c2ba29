// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Sharing/ShareHistoryStore.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

ShareHistoryItem makeItem(int number, std::optional<ShareHistoryItemContext> context = std::nullopt)
{
    return {ShareHistoryItemType::aws, u"upload %1.zip"_s.arg(number),
            QUrl(u"https://bucket.s3.eu-west-1.amazonaws.com/Vantrope/%1/upload.zip"_s.arg(number)),
            QDateTime(QDate(2026, 11, 1), QTime(12, 0), Qt::UTC).addSecs(number), std::move(context)};
}

QJsonArray readArray(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).array() : QJsonArray();
}

bool writeText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

class TestShareHistoryStore final : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path() const { return m_dir.filePath(u"data/.share_history"_s); }

private Q_SLOTS:
    void init() { QFile::remove(path()); }

    void keepsTheNewestTwoHundred()
    {
        ShareHistoryStore store(path());
        for (int number = 1; number <= 201; ++number) {
            store.add(makeItem(number));
        }
        QCOMPARE(store.items().size(), 200);
        QCOMPARE(store.items().first(), makeItem(201));
        QCOMPARE(store.items().last(), makeItem(2));
        const QJsonArray stored = readArray(path());
        QCOMPARE(stored.size(), 200);
        QCOMPARE(stored.first().toObject().value(u"title"_s).toString(), u"upload 201.zip"_s);
        QCOMPARE(QFileInfo(path()).permissions() & (QFileDevice::ReadOther | QFileDevice::ReadGroup),
                 QFileDevice::Permissions());
    }

    void everyContextSurvivesAReload()
    {
        const QList<ShareHistoryItem> items{
            makeItem(1, ShareHistoryItemAmazonContext{u"Vantrope/1/a b.zip"_s, u"bucket"_s, u"eu-west-1"_s}),
            makeItem(2, ShareHistoryItemImgurContext{u"dEl3t3"_s, true}),
            makeItem(
                3, ShareHistoryItemVantropeCloudContext{u"id"_s, u"token"_s,
                                                        QDateTime(QDate(2027, 1, 1), QTime(0, 0), Qt::UTC)}),
            makeItem(4),
        };
        {
            ShareHistoryStore store(path());
            for (const auto& item : items) {
                store.add(item);
            }
        }
        ShareHistoryStore reloaded(path());
        QList<ShareHistoryItem> expected(items.crbegin(), items.crend());
        QCOMPARE(reloaded.items(), expected);
        const QJsonObject aws = readArray(path()).last().toObject();
        QCOMPARE(aws.value(u"context"_s)
                     .toObject()
                     .value(u"aws"_s)
                     .toObject()
                     .value(u"_0"_s)
                     .toObject()
                     .value(u"path"_s),
                 QJsonValue(u"Vantrope/1/a b.zip"_s));
        QCOMPARE(aws.value(u"date"_s).toString(), u"2026-11-01T12:00:01Z"_s);
        QVERIFY(!readArray(path()).first().toObject().contains(u"context"_s));
    }

    void oldCloudEntriesBecomeContexts()
    {
        QVERIFY(QDir().mkpath(QFileInfo(path()).absolutePath()));
        QVERIFY(
            writeText(path(), R"([{"type":"vantropeCloud","title":"old","url":"https:\/\/example.org\/s\/1",
            "date":"2024-02-03T04:05:06Z","cloudIdentifier":"abc","cloudToken":"tok",
            "cloudExpirationDate":"2024-03-03T04:05:06Z"}])"));
        ShareHistoryStore store(path());
        QCOMPARE(store.items().size(), 1);
        const auto* context =
            std::get_if<ShareHistoryItemVantropeCloudContext>(&*store.items().first().context);
        QVERIFY(context);
        QCOMPARE(context->identifier, u"abc"_s);
        QCOMPARE(context->token, std::optional(u"tok"_s));
        QCOMPARE(context->expirationDate,
                 std::optional(QDateTime(QDate(2024, 3, 3), QTime(4, 5, 6), Qt::UTC)));

        store.add(makeItem(9));
        const QJsonObject rewritten = readArray(path()).last().toObject();
        QVERIFY(!rewritten.contains(u"cloudIdentifier"_s));
        QVERIFY(!rewritten.contains(u"cloudToken"_s));
        QVERIFY(rewritten.value(u"context"_s).toObject().contains(u"vantropeCloud"_s));
    }

    void unknownContextsLeaveTheItemWithout_data()
    {
        QTest::addColumn<QByteArray>("context");
        QTest::newRow("two cases") << QByteArray(R"({"aws":{"_0":{}},"imgur":{"_0":{}}})");
        QTest::newRow("a service that went") << QByteArray(R"({"dropbox":{"_0":{"path":"x"}}})");
        QTest::newRow("a member missing") << QByteArray(R"({"aws":{"_0":{"path":"x","bucket":"b"}}})");
        QTest::newRow("not an object") << QByteArray(R"("aws")");
    }

    void unknownContextsLeaveTheItemWithout()
    {
        QFETCH(QByteArray, context);
        QVERIFY(QDir().mkpath(QFileInfo(path()).absolutePath()));
        QVERIFY(writeText(
            path(), R"([{"type":"aws","title":"t","url":"https:\/\/x.org\/a","date":"2025-01-01T00:00:00Z",)"
                    R"("context":)" +
                        context + "}]"));
        ShareHistoryStore store(path());
        QCOMPARE(store.items().size(), 1);
        QCOMPARE(store.items().first().context, std::nullopt);
        QCOMPARE(store.items().first().title, u"t"_s);
    }

    // Entries without their required keys are skipped; the rest of the list stays.
    void brokenEntriesAreSkipped()
    {
        QVERIFY(QDir().mkpath(QFileInfo(path()).absolutePath()));
        QVERIFY(writeText(
            path(),
            R"([{"type":"aws","title":"kept","url":"https:\/\/x.org\/a","date":"2025-01-01T00:00:00Z"},
            {"type":"aws","title":"no date","url":"https:\/\/x.org\/b"}, 42,
            {"type":"somethingNew","title":"new type","url":"https:\/\/x.org\/c","date":"2025-01-02T00:00:00Z"}])"));
        ShareHistoryStore store(path());
        QCOMPARE(store.items().size(), 2);
        QCOMPARE(store.items().at(0).title, u"kept"_s);
        QCOMPARE(store.items().at(1).type, ShareHistoryItemType::unknown);
    }

    void aFileThatIsNotJsonIsKeptAside()
    {
        QVERIFY(QDir().mkpath(QFileInfo(path()).absolutePath()));
        QVERIFY(writeText(path(), "this is not json {"));
        ShareHistoryStore store(path());
        QVERIFY(store.items().isEmpty());
        store.add(makeItem(1));
        QCOMPARE(readArray(path()).size(), 1);
        const QStringList aside = QDir(QFileInfo(path()).absolutePath())
                                      .entryList({u".share_history*"_s}, QDir::Files | QDir::Hidden);
        QCOMPARE(aside.size(), 2);
        bool found = false;
        for (const QString& name : aside) {
            found = found ||
                    Test::readFile(QFileInfo(path()).absolutePath() + u'/' + name) == "this is not json {";
        }
        QVERIFY(found);
    }

    void changesAreSignalledAfterwardsAndOnlyForChanges()
    {
        ShareHistoryStore store(path());
        QSignalSpy changed(&store, &ShareHistoryStore::itemsChanged);
        store.add(makeItem(1));
        store.add(makeItem(2));
        QCOMPARE(changed.count(), 0);
        QTRY_COMPARE(changed.count(), 2);

        const QByteArray before = Test::readFile(path());
        QVERIFY(!store.remove(makeItem(3)));
        QCOMPARE(store.removeIf([](const ShareHistoryItem&) { return false; }), 0);
        QTest::qWait(20);
        QCOMPARE(changed.count(), 2);
        QCOMPARE(Test::readFile(path()), before);

        QVERIFY(store.remove(makeItem(1)));
        QCOMPARE(store.removeIf([](const ShareHistoryItem& item) { return item.title.contains(u'2'); }), 1);
        QTRY_COMPARE(changed.count(), 4);
        QCOMPARE(readArray(path()).size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestShareHistoryStore)
#include "TestShareHistoryStore.moc"
