// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <csignal>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <QTest>

using namespace std::chrono_literals;
using namespace Vantrope::Test;

// The real program on the test display and its private session bus, driven only through its own
// command line, as a user or a script would.
class TestAgentEndToEnd final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        for (const char* name : {"a.txt", "b.png"}) {
            QVERIFY(writeFile(file(QString::fromLatin1(name)), name));
        }
    }

    void cleanup() { m_agent.reset(); }

    void shelvesSurviveCloseAllAndOpenRecent()
    {
        QVERIFY(m_agent->start());
        const auto added = m_agent->run(
            {QStringLiteral("add"), file(QStringLiteral("a.txt")), file(QStringLiteral("b.png"))});
        QCOMPARE(added.exitCode, 0);
        const QString identifier = added.text();
        QVERIFY(!identifier.isEmpty());

        QJsonArray shelves = m_agent->list();
        QCOMPARE(shelves.size(), 1);
        QCOMPARE(shelves.first().toObject().value(QStringLiteral("identifier")).toString(), identifier);
        QCOMPARE(m_agent->items(),
                 QJsonArray({file(QStringLiteral("a.txt")), file(QStringLiteral("b.png"))}));
        QVERIFY(shelves.first()
                    .toObject()
                    .value(QStringLiteral("label"))
                    .toObject()
                    .contains(QStringLiteral("color")));

        QCOMPARE(m_agent->run({QStringLiteral("close-all")}).exitCode, 0);
        // close-all answers once the shelves are gone, so nothing lingers for the next request.
        QCOMPARE(m_agent->list().size(), 0);

        const auto reopened = m_agent->run({QStringLiteral("open-recent")});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.text(), identifier);
        shelves = m_agent->list();
        QCOMPARE(shelves.size(), 1);
        QCOMPARE(shelves.first().toObject().value(QStringLiteral("identifier")).toString(), identifier);
        QCOMPARE(m_agent->items().size(), 2);

        // Opening it again by name draws attention to the open one instead of making a second.
        QCOMPARE(m_agent->run({QStringLiteral("open-recent"), identifier}).exitCode, 0);
        QCOMPARE(m_agent->list().size(), 1);

        const auto made = m_agent->run({QStringLiteral("new")});
        QCOMPARE(made.exitCode, 0);
        shelves = m_agent->list();
        QCOMPARE(shelves.size(), 2);
        QCOMPARE(shelves.at(1).toObject().value(QStringLiteral("identifier")).toString(), made.text());
        QCOMPARE(m_agent->items(1).size(), 0);

        QCOMPARE(m_agent->run({QStringLiteral("quit")}).exitCode, 0);
        QVERIFY(m_agent->process().waitForFinished(5000));
        QCOMPARE(m_agent->process().exitCode(), 0);
        const auto after = m_agent->run({QStringLiteral("list")});
        QCOMPARE(after.exitCode, 1);
        QVERIFY2(after.error.contains(QStringLiteral("not running")), qPrintable(after.error));
    }

    void openShelvesOutliveTheAgent_data()
    {
        QTest::addColumn<QString>("end");
        QTest::newRow("quit") << QStringLiteral("quit");
        QTest::newRow("SIGTERM") << QStringLiteral("term");
        // Nothing runs at the end: the shelf must be on disk while it is open.
        QTest::newRow("kill -9") << QStringLiteral("kill");
    }

    // A shelf that held items is among the recent ones however the agent ended.
    void openShelvesOutliveTheAgent()
    {
        QFETCH(QString, end);
        QVERIFY(m_agent->start());
        const auto added = m_agent->run({QStringLiteral("add"), file(QStringLiteral("a.txt"))});
        QCOMPARE(added.exitCode, 0);
        const QString identifier = added.text();
        if (end == QLatin1String("quit")) {
            QCOMPARE(m_agent->run({QStringLiteral("quit")}).exitCode, 0);
        } else if (end == QLatin1String("term")) {
            ::kill(static_cast<pid_t>(m_agent->process().processId()), SIGTERM);
        } else {
            const QString store = m_agent->path(QStringLiteral("data/vantrope/.drag_sessions"));
            QTRY_VERIFY_WITH_TIMEOUT(readFile(store).contains(identifier.toUtf8()), 5000);
            m_agent->process().kill();
        }
        QVERIFY(m_agent->process().waitForFinished(5000));

        QVERIFY(m_agent->start());
        const auto reopened = m_agent->run({QStringLiteral("open-recent")});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.text(), identifier);
        QCOMPARE(m_agent->list().size(), 1);
        QCOMPARE(m_agent->items(), QJsonArray({file(QStringLiteral("a.txt"))}));
    }

    void refusesBadRequests_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("expectedError");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("missing file among good ones")
            << QStringList{QStringLiteral("add"), QStringLiteral("a.txt"), QStringLiteral("gone.txt")}
            << QStringLiteral("no such file: ") << 1;
        QTest::newRow("unknown shelf")
            << QStringList{QStringLiteral("open-recent"), QStringLiteral("NO-SUCH-ID")}
            << QStringLiteral("no recent shelf has the identifier \"NO-SUCH-ID\"") << 1;
        QTest::newRow("nothing closed yet") << QStringList{QStringLiteral("open-recent")}
                                            << QStringLiteral("there is no closed recent shelf to open") << 1;
        QTest::newRow("a usage mistake")
            << QStringList{QStringLiteral("bogus")} << QStringLiteral("no such file or command: ") << 2;
    }

    void refusesBadRequests()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, expectedError);
        QFETCH(int, exitCode);
        QVERIFY(m_agent->start());
        const auto result = m_agent->run(arguments, m_agent->home());
        QCOMPARE(result.exitCode, exitCode);
        QCOMPARE(result.error.count(QLatin1Char('\n')), 1);
        QVERIFY2(result.error.startsWith(QStringLiteral("vantrope: ") + expectedError),
                 qPrintable(result.error));
        // Nothing half done.
        QCOMPARE(m_agent->list().size(), 0);
        QCOMPARE(m_agent->process().state(), QProcess::Running);
    }

    void secondLaunchForwards_data()
    {
        QTest::addColumn<bool>("withFile");
        QTest::addColumn<QString>("agentLine");
        QTest::newRow("plain launch within the grace period")
            << false << QStringLiteral("Probably triggered during launch. Ignoring");
        QTest::newRow("launch with a file") << true << QString();
    }

    void secondLaunchForwards()
    {
        QFETCH(bool, withFile);
        QFETCH(QString, agentLine);
        QVERIFY(m_agent->start());
        const auto second =
            m_agent->run(withFile ? QStringList{file(QStringLiteral("a.txt"))} : QStringList{});
        QCOMPARE(second.exitCode, 0);
        QVERIFY2(!second.error.contains(QStringLiteral("started on")), qPrintable(second.error));
        QCOMPARE(m_agent->list().size(), withFile ? 1 : 0);
        if (withFile) {
            QCOMPARE(m_agent->items(), QJsonArray{file(QStringLiteral("a.txt"))});
        }
        if (!agentLine.isEmpty()) {
            QTRY_VERIFY(m_agent->log().contains(agentLine.toUtf8()));
        }
        QCOMPARE(m_agent->process().state(), QProcess::Running);
    }

    void filesOnTheFirstLaunchWaitForLaunching()
    {
        QVERIFY(m_agent->start({file(QStringLiteral("b.png"))}));
        QCOMPARE(m_agent->list().size(), 1);
        QCOMPARE(m_agent->items(), QJsonArray{file(QStringLiteral("b.png"))});
        const QByteArray log = m_agent->log();
        const auto early = log.indexOf("Attempted to perform pending actions but we are not launched yet");
        const auto performed = log.indexOf("Performing pending actions: 1");
        QVERIFY2(early >= 0 && performed > early, log.constData());
    }

    void killedAgentBlocksNothing_data()
    {
        QTest::addColumn<bool>("restartAtOnce");
        QTest::newRow("restart at once") << true;
        QTest::newRow("a command in between") << false;
    }

    void killedAgentBlocksNothing()
    {
        QFETCH(bool, restartAtOnce);
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({QStringLiteral("add"), file(QStringLiteral("a.txt"))}).exitCode, 0);
        const qint64 killed = m_agent->process().processId();
        m_agent->kill();

        if (!restartAtOnce) {
            const auto orphan = m_agent->run({QStringLiteral("list")});
            QCOMPARE(orphan.exitCode, 1);
            QVERIFY2(orphan.error.contains(QStringLiteral("not running")), qPrintable(orphan.error));
        }

        QVERIFY(m_agent->start());
        QVERIFY(m_agent->process().processId() != killed);
        QCOMPARE(m_agent->list().size(), 0);
        QCOMPARE(m_agent->run({QStringLiteral("add"), file(QStringLiteral("b.png"))}).exitCode, 0);
        QCOMPARE(m_agent->list().size(), 1);
    }

    void dragGestureOpensAShelfAtThePointer_data()
    {
        QTest::addColumn<bool>("withModifier");
        QTest::addColumn<bool>("dropOnShelf");
        QTest::newRow("shake, dropped on the shelf") << false << true;
        QTest::newRow("shake, released elsewhere") << false << false;
        QTest::newRow("trigger modifier, dropped on the shelf") << true << true;
    }

    void dragGestureOpensAShelfAtThePointer()
    {
        QFETCH(bool, withModifier);
        QFETCH(bool, dropOnShelf);
        // No introduction window in the way; the trigger modifier as the row asks.
        QVERIFY(writeFile(
            m_agent->path(QStringLiteral("config/vantrope/preferences.json")),
            QJsonDocument(QJsonObject{{QStringLiteral("IsFirstLaunch"), true},
                                      {QStringLiteral("ShelfTriggerModifierKeyEnabled"), withModifier},
                                      {QStringLiteral("ShelfTriggerModifierKey"), QStringLiteral("shift")}})
                .toJson()));
        QVERIFY(m_agent->start());
        const QString dropped = file(QStringLiteral("a.txt"));
        HelperProgram source;
        const QPoint from = source.start(
            QStringLiteral(SHELF_DRAG_SOURCE_BINARY),
            {QStringLiteral("--kind"), QStringLiteral("files"), QStringLiteral("--file"), dropped});
        QVERIFY(!from.isNull());

        // The button stays down between the two runs, so the shelf can be looked at mid-drag.
        PointerScript gesture;
        if (withModifier) {
            gesture.keyDown(QStringLiteral("shift"));
        }
        gesture.startDrag(from);
        if (withModifier) {
            // The moves so far carried no content yet; the next one begins the gesture.
            gesture.pause(600ms).move(10, 0);
        } else {
            gesture.pause(1200ms).shake();
        }
        // Whatever happens, the button and the key do not stay down for the next test.
        PointerScript letGo;
        letGo.release();
        if (withModifier) {
            letGo.keyUp(QStringLiteral("shift"));
        }
        auto releaseAll = qScopeGuard([&letGo] { runXdotool(letGo.arguments()); });
        QVERIFY(runXdotool(gesture.arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 1, 5000);
        QCOMPARE(m_agent->items().size(), 0);
        const QRect shelf = m_agent->shelfGeometry();
        const QPoint pointer = m_agent->pointer();
        QCOMPARE(shelf.size(), QSize(180, 188));
        QVERIFY2(shelf.contains(pointer), qPrintable(QStringLiteral("shelf at %1,%2, pointer at %3,%4")
                                                         .arg(shelf.x())
                                                         .arg(shelf.y())
                                                         .arg(pointer.x())
                                                         .arg(pointer.y())));

        PointerScript end;
        if (dropOnShelf) {
            // The drag source learns of the new window under the pointer from the next motion.
            end.move(4, 4).pause(200ms).move(-4, -4).pause(300ms);
        } else {
            end.move(0, 150).pause(50ms).move(0, 150).pause(50ms).move(0, 150).pause(300ms);
        }
        QVERIFY(runXdotool(end.arguments() + letGo.arguments()));
        releaseAll.dismiss();
        QVERIFY(source.waitFor("drag finished", 10000));
        if (!dropOnShelf) {
            // The empty shelf goes once the drag is over.
            QTRY_COMPARE_WITH_TIMEOUT(m_agent->list().size(), 0, 5000);
            return;
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_agent->items(), QJsonArray{dropped}, 5000);
        // Past the moment the end of the drag closes empty shelves, the shelf with the file stays.
        QTest::qWait(400);
        QCOMPARE(m_agent->list().size(), 1);
    }

private:
    QString file(const QString& name) const { return m_agent->path(name); }

    std::unique_ptr<AgentUnderTest> m_agent;
};

QTEST_GUILESS_MAIN(TestAgentEndToEnd)
#include "TestAgentEndToEnd.moc"
