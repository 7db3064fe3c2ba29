#include "support/TestSupport.h"

#include <csignal>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

// Starts the real program on the test display and checks that its tray item docks in a real tray host.
class TestTrayAgent final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_home.isValid());
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("HOME"), m_home.path());
        m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path() + QStringLiteral("/config"));
        m_environment.insert(QStringLiteral("XDG_DATA_HOME"), m_home.path() + QStringLiteral("/data"));
        m_environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_home.path() + QStringLiteral("/cache"));
    }

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

        const QString logs = m_home.path() + QStringLiteral("/cache/vantrope/Logs");
        QDir(logs).removeRecursively();
        QVERIFY(Vantrope::Test::writeFile(m_home.path() + QStringLiteral("/config/vantrope/preferences.json"),
                                          fileLogging ? "{\"FileLoggingEnabled\": true}" : "{}"));

        QProcess tray;
        QProcess agent;
        agent.setProcessEnvironment(m_environment);
        if (trayFirst) {
            startTray(tray);
        }
        agent.start(QStringLiteral(VANTROPE_BINARY), {});
        QVERIFY(agent.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(m_agentLog.append(agent.readAllStandardError()).contains("started on xcb"),
                                 10000);
        if (!trayFirst) {
            QVERIFY2(m_agentLog.contains("No system tray is running yet"), m_agentLog.constData());
            startTray(tray);
        }

        QTRY_VERIFY_WITH_TIMEOUT(m_trayOutput.append(tray.readAllStandardOutput()).contains("docked"), 10000);
        const QRegularExpression docked(QStringLiteral("docked 0x[0-9a-f]+ (\\d+)"));
        const auto match = docked.match(QString::fromLatin1(m_trayOutput));
        QVERIFY(match.hasMatch());
        QCOMPARE(match.captured(1).toLongLong(), agent.processId());

        // A session manager's SIGTERM ends the program cleanly.
        ::kill(static_cast<pid_t>(agent.processId()), SIGTERM);
        QVERIFY(agent.waitForFinished(10000));
        QCOMPARE(agent.exitStatus(), QProcess::NormalExit);
        QCOMPARE(agent.exitCode(), 0);
        m_agentLog.append(agent.readAllStandardError());
        QVERIFY2(m_agentLog.contains("Vantrope stopped"), m_agentLog.constData());

        const QStringList logFiles = QDir(logs).entryList({QStringLiteral("vantrope-*.log")}, QDir::Files);
        QCOMPARE(logFiles.size(), fileLogging ? 1 : 0);
        if (fileLogging) {
            const QByteArray written = Vantrope::Test::readFile(QDir(logs).filePath(logFiles.first()));
            QVERIFY2(written.contains("info vantrope.app: Vantrope 0.1.0 started on xcb (main.cpp:"),
                     written.constData());
        }

        tray.kill();
        tray.waitForFinished();
        m_agentLog.clear();
        m_trayOutput.clear();
    }

private:
    void startTray(QProcess& tray)
    {
        tray.start(QStringLiteral(TRAY_HOST_BINARY), {});
        QVERIFY(tray.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(m_trayOutput.append(tray.readAllStandardOutput()).startsWith("ready\n"),
                                 5000);
    }

    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
    QByteArray m_agentLog;
    QByteArray m_trayOutput;
};

QTEST_GUILESS_MAIN(TestTrayAgent)
#include "TestTrayAgent.moc"
