#include "support/TestSupport.h"

#include <csignal>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

// The real program on the test display and its private session bus, driven only through its own
// command line, as a user or a script would.
class TestAgentEndToEnd final : public QObject {
    Q_OBJECT

    struct Result {
        int exitCode = -1;
        QString output;
        QString error;
    };

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QVERIFY(m_home->isValid());
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("HOME"), m_home->path());
        for (const char* name : {"CONFIG", "DATA", "CACHE"}) {
            m_environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(name)),
                                 m_home->filePath(QString::fromLatin1(name).toLower()));
        }
        for (const char* name : {"a.txt", "b.png"}) {
            QVERIFY(Vantrope::Test::writeFile(file(QString::fromLatin1(name)), name));
        }
    }

    void cleanup()
    {
        if (m_agent && m_agent->state() != QProcess::NotRunning) {
            ::kill(static_cast<pid_t>(m_agent->processId()), SIGCONT);
            m_agent->kill();
            m_agent->waitForFinished();
        }
        m_agent.reset();
        m_agentLog.clear();
    }

    void shelvesSurviveCloseAllAndOpenRecent()
    {
        startAgent();
        const Result added =
            run({QStringLiteral("add"), file(QStringLiteral("a.txt")), file(QStringLiteral("b.png"))});
        QCOMPARE(added.exitCode, 0);
        const QString identifier = added.output.trimmed();
        QVERIFY(!identifier.isEmpty());

        QJsonArray shelves = list();
        QCOMPARE(shelves.size(), 1);
        QJsonObject shelf = shelves.first().toObject();
        QCOMPARE(shelf.value(QStringLiteral("identifier")).toString(), identifier);
        QCOMPARE(shelf.value(QStringLiteral("items")).toArray(),
                 QJsonArray({file(QStringLiteral("a.txt")), file(QStringLiteral("b.png"))}));
        QVERIFY(shelf.value(QStringLiteral("label")).toObject().contains(QStringLiteral("color")));

        QCOMPARE(run({QStringLiteral("close-all")}).exitCode, 0);
        // close-all answers once the shelves are gone, so nothing lingers for the next request.
        QCOMPARE(list().size(), 0);

        const Result reopened = run({QStringLiteral("open-recent")});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.output.trimmed(), identifier);
        shelves = list();
        QCOMPARE(shelves.size(), 1);
        shelf = shelves.first().toObject();
        QCOMPARE(shelf.value(QStringLiteral("identifier")).toString(), identifier);
        QCOMPARE(shelf.value(QStringLiteral("items")).toArray().size(), 2);

        // Opening it again by name draws attention to the open one instead of making a second.
        QCOMPARE(run({QStringLiteral("open-recent"), identifier}).exitCode, 0);
        QCOMPARE(list().size(), 1);

        const Result made = run({QStringLiteral("new")});
        QCOMPARE(made.exitCode, 0);
        shelves = list();
        QCOMPARE(shelves.size(), 2);
        QCOMPARE(shelves.at(1).toObject().value(QStringLiteral("identifier")).toString(),
                 made.output.trimmed());
        QCOMPARE(shelves.at(1).toObject().value(QStringLiteral("items")).toArray().size(), 0);

        QCOMPARE(run({QStringLiteral("quit")}).exitCode, 0);
        QVERIFY(m_agent->waitForFinished(5000));
        QCOMPARE(m_agent->exitCode(), 0);
        const Result after = run({QStringLiteral("list")});
        QCOMPARE(after.exitCode, 1);
        QVERIFY2(after.error.contains(QStringLiteral("not running")), qPrintable(after.error));
    }

    void refusesBadRequests_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("expectedError");
        QTest::newRow("missing file among good ones")
            << QStringList{QStringLiteral("add"), QStringLiteral("a.txt"), QStringLiteral("gone.txt")}
            << QStringLiteral("no such file: ");
        QTest::newRow("unknown shelf")
            << QStringList{QStringLiteral("open-recent"), QStringLiteral("NO-SUCH-ID")}
            << QStringLiteral("no recent shelf has the identifier \"NO-SUCH-ID\"");
        QTest::newRow("nothing closed yet") << QStringList{QStringLiteral("open-recent")}
                                            << QStringLiteral("there is no closed recent shelf to open");
        QTest::newRow("second launch with a missing file")
            << QStringList{QStringLiteral("gone.txt")} << QStringLiteral("no such file or command: ");
    }

    void refusesBadRequests()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, expectedError);
        startAgent();
        const Result result = run(arguments, m_home->path());
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error.count(QLatin1Char('\n')), 1);
        QVERIFY2(result.error.startsWith(QStringLiteral("vantrope: ") + expectedError),
                 qPrintable(result.error));
        // Nothing half done.
        QCOMPARE(list().size(), 0);
        QCOMPARE(m_agent->state(), QProcess::Running);
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
        startAgent();
        const Result second = run(withFile ? QStringList{file(QStringLiteral("a.txt"))} : QStringList{});
        QCOMPARE(second.exitCode, 0);
        QVERIFY2(!second.error.contains(QStringLiteral("started on")), qPrintable(second.error));
        const QJsonArray shelves = list();
        QCOMPARE(shelves.size(), withFile ? 1 : 0);
        if (withFile) {
            QCOMPARE(shelves.first().toObject().value(QStringLiteral("items")).toArray(),
                     QJsonArray{file(QStringLiteral("a.txt"))});
        }
        if (!agentLine.isEmpty()) {
            QTRY_VERIFY(readAgentLog().contains(agentLine.toUtf8()));
        }
        QCOMPARE(m_agent->state(), QProcess::Running);
    }

    void filesOnTheFirstLaunchWaitForLaunching()
    {
        startAgent({file(QStringLiteral("b.png"))});
        const QJsonArray shelves = list();
        QCOMPARE(shelves.size(), 1);
        QCOMPARE(shelves.first().toObject().value(QStringLiteral("items")).toArray(),
                 QJsonArray{file(QStringLiteral("b.png"))});
        const QByteArray log = readAgentLog();
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
        startAgent();
        QCOMPARE(run({QStringLiteral("add"), file(QStringLiteral("a.txt"))}).exitCode, 0);
        const qint64 killed = m_agent->processId();
        m_agent->kill();
        QVERIFY(m_agent->waitForFinished());

        if (!restartAtOnce) {
            const Result orphan = run({QStringLiteral("list")});
            QCOMPARE(orphan.exitCode, 1);
            QVERIFY2(orphan.error.contains(QStringLiteral("not running")), qPrintable(orphan.error));
        }

        startAgent();
        QVERIFY(m_agent->processId() != killed);
        QCOMPARE(list().size(), 0);
        QCOMPARE(run({QStringLiteral("add"), file(QStringLiteral("b.png"))}).exitCode, 0);
        QCOMPARE(list().size(), 1);
    }

    void hungAgentCostsATimeoutNotAHang()
    {
        startAgent();
        ::kill(static_cast<pid_t>(m_agent->processId()), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
        ::kill(static_cast<pid_t>(m_agent->processId()), SIGCONT);
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.contains(QStringLiteral("did not answer")), qPrintable(result.error));
        QVERIFY(timer.elapsed() < 15000);
    }

private:
    QString file(const QString& name) const { return m_home->filePath(name); }

    void startAgent(const QStringList& arguments = {})
    {
        m_agentLog.clear();
        m_agent = std::make_unique<QProcess>();
        m_agent->setProcessEnvironment(m_environment);
        m_agent->start(QStringLiteral(VANTROPE_BINARY), arguments);
        QVERIFY(m_agent->waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(readAgentLog().contains("started on xcb"), 10000);
        QCOMPARE(m_agent->state(), QProcess::Running);
    }

    QByteArray readAgentLog()
    {
        m_agentLog.append(m_agent->readAllStandardError());
        return m_agentLog;
    }

    Result run(const QStringList& arguments, const QString& workingDirectory = {})
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(workingDirectory);
        process.start(QStringLiteral(VANTROPE_BINARY), arguments);
        if (!process.waitForFinished(20000)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardOutput()),
                QString::fromLocal8Bit(process.readAllStandardError())};
    }

    QJsonArray list()
    {
        const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
        QJsonParseError error{};
        const QJsonDocument document = QJsonDocument::fromJson(result.output.toUtf8(), &error);
        if (result.exitCode != 0 || error.error != QJsonParseError::NoError || !document.isArray()) {
            qWarning().noquote() << "list --json failed:" << result.exitCode << result.error << result.output;
            return {{QStringLiteral("list failed")}};
        }
        return document.array();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_agent;
    QByteArray m_agentLog;
};

QTEST_GUILESS_MAIN(TestAgentEndToEnd)
#include "TestAgentEndToEnd.moc"
