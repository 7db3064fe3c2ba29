// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Sharing/S3KeyPath.h"

#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(TokenizedPath)

class TestS3KeyPath final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resolves_data()
    {
        QTest::addColumn<TokenizedPath>("path");
        QTest::addColumn<QString>("key");
        QTest::newRow("the default: a folder per upload")
            << S3KeyPath::defaultPath() << u"Vantrope/0A1B-2C/Holiday photos.zip"_s;
        QTest::newRow("a trailing slash goes")
            << TokenizedPath{PathToken::element(u"shared/"_s), PathToken::date(), PathToken::element(u"/"_s)}
            << u"shared/20261125193706"_s;
        QTest::newRow("only one trailing slash goes")
            << TokenizedPath{PathToken::element(u"a//"_s)} << u"a/"_s;
        QTest::newRow("nothing") << TokenizedPath{} << QString();
    }

    void resolves()
    {
        QFETCH(TokenizedPath, path);
        QFETCH(QString, key);
        const PathTokenFactory factory{u"Holiday photos.zip"_s, u"0A1B-2C"_s,
                                       QDateTime(QDate(2026, 11, 25), QTime(19, 37, 6))};
        QCOMPARE(factory.resolve(path), key);
    }

    void storedFormRoundTrips()
    {
        const TokenizedPath path{PathToken::element(u"ünï/"_s), PathToken::date(), PathToken::uuid(),
                                 PathToken::filename()};
        QCOMPARE(S3KeyPath::decode(S3KeyPath::encode(path)), path);
        QCOMPARE(
            S3KeyPath::encode(S3KeyPath::defaultPath()),
            QByteArray(
                R"([{"element":{"_0":"Vantrope/"}},{"uuid":{}},{"element":{"_0":"/"}},{"filename":{}}])"));
    }

    void unreadableStoredPathsGiveTheDefault_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QString>("error");
        QTest::newRow("nothing stored") << QByteArray() << QString();
        QTest::newRow("not JSON") << QByteArray("[{") << u"not a JSON array"_s;
        QTest::newRow("two keys in a token")
            << QByteArray(R"([{"uuid":{},"date":{}}])") << u"Invalid number of keys found, expected one."_s;
        QTest::newRow("no keys") << QByteArray(R"([{}])") << u"Invalid number of keys found, expected one."_s;
        QTest::newRow("unknown token")
            << QByteArray(R"([{"hostname":{}}])") << u"unknown token \"hostname\""_s;
        QTest::newRow("element without text")
            << QByteArray(R"([{"element":{}}])") << u"an element without its text"_s;
    }

    void unreadableStoredPathsGiveTheDefault()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QString, error);
        QCOMPARE(S3KeyPath::fromStored(stored), S3KeyPath::defaultPath());
        if (!error.isEmpty()) {
            QCOMPARE(S3KeyPath::decode(stored).error(), error);
        }
    }

    void expiryOptions()
    {
        const auto& options = S3ExpirationOption::all();
        QCOMPARE(options.size(), 13);
        QCOMPARE(options.first().seconds(), 600);
        QCOMPARE(options.last().seconds(), 604800);
        QCOMPARE(options.at(2).title(), u"1 hour"_s);
        QCOMPARE(options.at(3).title(), u"3 hours"_s);
        for (qsizetype index = 1; index < options.size(); ++index) {
            QVERIFY(options.at(index).seconds() > options.at(index - 1).seconds());
        }
    }

    void restoresTheClosestRow_data()
    {
        QTest::addColumn<qint64>("stored");
        QTest::addColumn<qint64>("seconds");
        QTest::newRow("exact") << qint64(86400) << qint64(86400);
        QTest::newRow("5400 s is nearer an hour than three") << qint64(5400) << qint64(3600);
        QTest::newRow("halfway picks the earlier") << qint64(1200) << qint64(600);
        QTest::newRow("beyond a week") << qint64(10'000'000) << qint64(604800);
        QTest::newRow("nothing") << qint64(0) << qint64(600);
    }

    void restoresTheClosestRow()
    {
        QFETCH(qint64, stored);
        QFETCH(qint64, seconds);
        QCOMPARE(S3ExpirationOption::all().at(S3ExpirationOption::closestIndex(stored)).seconds(), seconds);
    }
};

QTEST_GUILESS_MAIN(TestS3KeyPath)
#include "TestS3KeyPath.moc"
