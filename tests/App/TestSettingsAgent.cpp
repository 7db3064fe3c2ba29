// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "support/TestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Vantrope::Test;
using namespace Qt::StringLiterals;

// `vantrope settings` against the real program: values by their stored names, checked against the key's
// type, and saved where the program keeps its preferences.
class TestSettingsAgent final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        QVERIFY(m_agent->start());
    }

    void cleanupTestCase() { m_agent.reset(); }

    void setAndGet_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        // What the program says it holds afterwards; empty for a refusal.
        QTest::addColumn<QString>("holds");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("a switch") << u"CopiesContentOnDrag"_s << u"true"_s << u"true"_s << QString();
        QTest::newRow("a switch given a word")
            << u"CopiesContentOnDrag"_s << u"yes"_s << QString() << u"takes true or false, not \"yes\""_s;
        QTest::newRow("a list as JSON") << u"IgnoredApplications"_s << u"[\"gimp\", \"inkscape\"]"_s
                                        << u"[\"gimp\",\"inkscape\"]"_s << QString();
        QTest::newRow("a list given plain text")
            << u"IgnoredApplications"_s << u"gimp"_s << QString() << u"takes a JSON list of texts"_s;
        QTest::newRow("an unknown name")
            << u"NoSuchSetting"_s << u"1"_s << QString() << u"no setting is called"_s;
        QTest::newRow("the program's own bookkeeping")
            << u"NumberOfDrops"_s << u"5"_s << QString() << u"kept by Vantrope itself"_s;
    }

    void setAndGet()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QString, holds);
        QFETCH(QString, refusal);
        const QString before = m_agent->run({u"settings"_s, u"get"_s, key}).text();
        const auto set = m_agent->run({u"settings"_s, u"set"_s, key, value});
        if (refusal.isEmpty()) {
            QCOMPARE(set.exitCode, 0);
            QCOMPARE(set.text(), holds);
            QCOMPARE(m_agent->run({u"settings"_s, u"get"_s, key}).text(), holds);
        } else {
            QCOMPARE(set.exitCode, 1);
            QVERIFY2(set.error.contains(refusal), qPrintable(set.error));
            // Nothing changed.
            QCOMPARE(m_agent->run({u"settings"_s, u"get"_s, key}).text(), before);
        }
    }

    void savedInThePreferencesFile()
    {
        QCOMPARE(m_agent->run({u"settings"_s, u"set"_s, u"ShelfRetractionEnabled"_s, u"false"_s}).exitCode,
                 0);
        const QJsonObject stored =
            QJsonDocument::fromJson(readFile(m_agent->path(u"config/vantrope/preferences.json"_s))).object();
        QCOMPARE(stored.value(u"ShelfRetractionEnabled"_s), QJsonValue(false));
    }

private:
    std::unique_ptr<AgentUnderTest> m_agent;
};

QTEST_GUILESS_MAIN(TestSettingsAgent)
#include "TestSettingsAgent.moc"
