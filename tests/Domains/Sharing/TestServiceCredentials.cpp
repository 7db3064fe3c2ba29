// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Sharing/ServiceCredentials.h"

#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestServiceCredentials final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void encodesExactlyTheFourMembers()
    {
        const AmazonServiceCredentials credentials{u"AKIA1"_s, u"s3cr\"et/+="_s, u"my-bucket"_s,
                                                   u"eu-west-3"_s};
        const QByteArray json = credentials.toJson();
        QVERIFY(!json.contains('\n'));
        QCOMPARE(AmazonServiceCredentials::fromJson(json), std::optional(credentials));
        QCOMPARE(AmazonServiceCredentials::accountName(), u"service.aws"_s);
        for (const char* member : {"\"key\"", "\"secret\"", "\"bucket\"", "\"region\""}) {
            QVERIFY2(json.contains(member), json.constData());
        }
        QCOMPARE(json.count(':'), 4);
    }

    void refusesWhatIsNotCredentials_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("a member missing") << QByteArray(R"({"key":"a","secret":"b","bucket":"c"})");
        QTest::newRow("a number") << QByteArray(R"({"key":"a","secret":"b","bucket":"c","region":1})");
        QTest::newRow("null") << QByteArray(R"({"key":"a","secret":null,"bucket":"c","region":"d"})");
        QTest::newRow("an array") << QByteArray(R"(["a","b","c","d"])");
        QTest::newRow("cut short") << QByteArray("{\"key\":\"a\",\"secret\":\"b\",\"buck");
        QTest::newRow("empty") << QByteArray();
    }

    void refusesWhatIsNotCredentials()
    {
        QFETCH(QByteArray, json);
        QCOMPARE(AmazonServiceCredentials::fromJson(json), std::nullopt);
    }

    void extraMembersAreIgnored()
    {
        const auto credentials =
            AmazonServiceCredentials::fromJson("{\"key\":\"a\",\"secret\":\"b\",\"bucket\":\"c\",\"region\":"
                                               "\"d\",\"endpoint\":\"https:\\/\\/s3.example.org\"}");
        QVERIFY(credentials);
        QCOMPARE(credentials->region, u"d"_s);
        QVERIFY(!credentials->toJson().contains("endpoint"));
    }
};

QTEST_GUILESS_MAIN(TestServiceCredentials)
#include "TestServiceCredentials.moc"
