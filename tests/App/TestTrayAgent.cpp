// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "App/StatusItemController.h"
#include "support/TestSupport.h"

#include <csignal>
#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace Vantrope::Test;

// Starts the real program on the test display and checks that its tray item docks in a real tray host.
class TestTrayAgent final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void docksInTray_data()
    {
        QTest::addColumn<bool>("trayFirst");
        QTest::addColumn<bool>("fileLogging");
        QTest::newRow("tray already running") << true << false;
        QTest::newRow("tray starts after the program") << false << false;
        QTest::newRow("with file logging") << true << true;
    }

    void docksInTray()
    {
        QFETCH(bool, trayFirst);
        QFETCH(bool, fileLogging);

        m_trayOutput.clear();
        AgentUnderTest agent;
        const QString logs = agent.path(QStringLiteral("cache/vantrope/Logs"));
        QVERIFY(writeFile(agent.path(QStringLiteral("config/vantrope/preferences.json")),
                          fileLogging ? "{\"FileLoggingEnabled\": true}" : "{}"));
        QProcess tray;
        const auto startTray = [&tray, this] {
            tray.start(QStringLiteral(TRAY_HOST_BINARY), {});
            return tray.waitForStarted() &&
                   QTest::qWaitFor([&] { return trayOutput(tray).startsWith("ready\n"); }, 5000);
        };
        if (trayFirst) {
            QVERIFY(startTray());
        }
        QVERIFY(agent.start());
        if (!trayFirst) {
            QVERIFY2(agent.log().contains("No system tray is running yet"), agent.log().constData());
            QVERIFY(startTray());
        }

        QTRY_VERIFY_WITH_TIMEOUT(trayOutput(tray).contains("docked"), 10000);
        const auto match = QRegularExpression(QStringLiteral("docked 0x[0-9a-f]+ (\\d+)"))
                               .match(QString::fromLatin1(m_trayOutput));
        QVERIFY(match.hasMatch());
        QCOMPARE(match.captured(1).toLongLong(), agent.process().processId());

        // A session manager's SIGTERM ends the program cleanly.
        ::kill(static_cast<pid_t>(agent.process().processId()), SIGTERM);
        QVERIFY(agent.process().waitForFinished(10000));
        QCOMPARE(agent.process().exitStatus(), QProcess::NormalExit);
        QCOMPARE(agent.process().exitCode(), 0);
        QVERIFY2(agent.log().contains("Vantrope stopped"), agent.log().constData());

        const QStringList logFiles = QDir(logs).entryList({QStringLiteral("vantrope-*.log")}, QDir::Files);
        QCOMPARE(logFiles.size(), fileLogging ? 1 : 0);
        if (fileLogging) {
            const QByteArray written = readFile(QDir(logs).filePath(logFiles.first()));
            QVERIFY2(written.contains("info vantrope.app: Vantrope 0.1.0 started on xcb (main.cpp:"),
                     written.constData());
        }
        tray.kill();
        tray.waitForFinished();
    }

    // Hidden at start, shown and hidden again by `settings set`, with the program running throughout.
    void followsTheTraySettings()
    {
        m_trayOutput.clear();
        AgentUnderTest agent;
        QVERIFY(writeFile(
            agent.path(QStringLiteral("config/vantrope/preferences.json")),
            "{\"PrefersHiddenStatusItem\": true, \"PreferredMenuBarIconIdentifier\": \"documentTilted\"}"));
        QProcess tray;
        tray.start(QStringLiteral(TRAY_HOST_BINARY), {});
        QVERIFY(tray.waitForStarted());
        QVERIFY(QTest::qWaitFor([&] { return trayOutput(tray).startsWith("ready\n"); }, 5000));
        QVERIFY(agent.start());
        QTRY_VERIFY_WITH_TIMEOUT(agent.log().contains("Tray item hidden, as the settings ask"), 10000);
        QTest::qWait(500);
        QVERIFY2(!trayOutput(tray).contains("docked"), m_trayOutput.constData());

        const auto set = [&agent](const QString& value) {
            return agent
                .run({QStringLiteral("settings"), QStringLiteral("set"),
                      QStringLiteral("PrefersHiddenStatusItem"), value})
                .exitCode;
        };
        QCOMPARE(set(QStringLiteral("false")), 0);
        QTRY_VERIFY_WITH_TIMEOUT(trayOutput(tray).contains("docked 0x"), 10000);
        QCOMPARE(set(QStringLiteral("true")), 0);
        QTRY_VERIFY_WITH_TIMEOUT(trayOutput(tray).contains("undocked 0x"), 10000);
        QCOMPARE(agent.process().state(), QProcess::Running);
        tray.kill();
        tray.waitForFinished();
    }

    void everyIconStyleHasItsIcon_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<QString>("icon");
        QTest::newRow("classic") << QStringLiteral("traditional")
                                 << QStringLiteral(":/icons/vantrope-tray.svg");
        QTest::newRow("document") << QStringLiteral("document")
                                  << QStringLiteral(":/icons/vantrope-tray-document.svg");
        QTest::newRow("tilted") << QStringLiteral("documentTilted")
                                << QStringLiteral(":/icons/vantrope-tray-document-tilted.svg");
        QTest::newRow("unknown falls back")
            << QStringLiteral("sparkles") << QStringLiteral(":/icons/vantrope-tray.svg");
    }

    void everyIconStyleHasItsIcon()
    {
        QFETCH(QString, style);
        QFETCH(QString, icon);
        QCOMPARE(Vantrope::StatusItemController::iconPath(style), icon);
        Q_INIT_RESOURCE(resources);
        QVERIFY(readFile(icon).startsWith("<svg "));
    }

private:
    QByteArray trayOutput(QProcess& tray) { return m_trayOutput.append(tray.readAllStandardOutput()); }

    QByteArray m_trayOutput;
};

QTEST_GUILESS_MAIN(TestTrayAgent)
#include "TestTrayAgent.moc"
