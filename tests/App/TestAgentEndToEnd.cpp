#include "support/PointerScript.h"
#include "support/TestSupport.h"

#include <csignal>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;

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
        startAgent();
        const Result added = run({QStringLiteral("add"), file(QStringLiteral("a.txt"))});
        QCOMPARE(added.exitCode, 0);
        const QString identifier = added.output.trimmed();
        if (end == QLatin1String("quit")) {
            QCOMPARE(run({QStringLiteral("quit")}).exitCode, 0);
        } else if (end == QLatin1String("term")) {
            ::kill(static_cast<pid_t>(m_agent->processId()), SIGTERM);
        } else {
            const QString store = m_home->filePath(QStringLiteral("data/vantrope/.drag_sessions"));
            QTRY_VERIFY_WITH_TIMEOUT(Vantrope::Test::readFile(store).contains(identifier.toUtf8()), 5000);
            m_agent->kill();
        }
        QVERIFY(m_agent->waitForFinished(5000));

        startAgent();
        const Result reopened = run({QStringLiteral("open-recent")});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.output.trimmed(), identifier);
        const QJsonArray shelves = list();
        QCOMPARE(shelves.size(), 1);
        QCOMPARE(shelves.first().toObject().value(QStringLiteral("items")).toArray(),
                 QJsonArray({file(QStringLiteral("a.txt"))}));
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
        QVERIFY(Vantrope::Test::writeFile(
            m_home->filePath(QStringLiteral("config/vantrope/preferences.json")),
            QJsonDocument(QJsonObject{{QStringLiteral("IsFirstLaunch"), true},
                                      {QStringLiteral("ShelfTriggerModifierKeyEnabled"), withModifier},
                                      {QStringLiteral("ShelfTriggerModifierKey"), QStringLiteral("shift")}})
                .toJson()));
        startAgent();
        const QString dropped = file(QStringLiteral("a.txt"));
        QProcess source;
        source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY),
                     {QStringLiteral("--kind"), QStringLiteral("files"), QStringLiteral("--file"), dropped});
        const auto stopSource = qScopeGuard([&source] {
            source.kill();
            source.waitForFinished();
        });
        QByteArray sourceOutput;
        QTRY_VERIFY_WITH_TIMEOUT(sourceOutput.append(source.readAllStandardOutput()).contains("ready "),
                                 10000);
        const QList<QByteArray> ready =
            sourceOutput.mid(sourceOutput.indexOf("ready ")).split('\n').first().split(' ');
        QCOMPARE(ready.size(), 3);

        // The button stays down between the two runs, so the shelf can be looked at mid-drag.
        Vantrope::Test::PointerScript gesture;
        if (withModifier) {
            gesture.keyDown(QStringLiteral("shift"));
        }
        gesture.startDrag(QPoint(ready[1].toInt(), ready[2].toInt()));
        if (withModifier) {
            // The moves so far carried no content yet; the next one begins the gesture.
            gesture.pause(600ms).move(10, 0);
        } else {
            gesture.pause(1200ms).shake();
        }
        // Whatever happens, the button and the key do not stay down for the next test.
        Vantrope::Test::PointerScript letGo;
        letGo.release();
        if (withModifier) {
            letGo.keyUp(QStringLiteral("shift"));
        }
        auto releaseAll = qScopeGuard([&letGo] { Vantrope::Test::runXdotool(letGo.arguments()); });
        QVERIFY(Vantrope::Test::runXdotool(gesture.arguments()));
        QTRY_COMPARE_WITH_TIMEOUT(list().size(), 1, 5000);
        QCOMPARE(list().first().toObject().value(QStringLiteral("items")).toArray().size(), 0);
        const QRect shelf = agentShelfGeometry();
        QCOMPARE(shelf.size(), QSize(180, 188));
        QVERIFY2(shelf.contains(pointerLocation()),
                 qPrintable(QStringLiteral("shelf at %1,%2, pointer at %3,%4")
                                .arg(shelf.x())
                                .arg(shelf.y())
                                .arg(pointerLocation().x())
                                .arg(pointerLocation().y())));

        Vantrope::Test::PointerScript end;
        if (dropOnShelf) {
            // The drag source learns of the new window under the pointer from the next motion.
            end.move(4, 4).pause(200ms).move(-4, -4).pause(300ms);
        } else {
            end.move(0, 150).pause(50ms).move(0, 150).pause(50ms).move(0, 150).pause(300ms);
        }
        QVERIFY(Vantrope::Test::runXdotool(end.arguments() + letGo.arguments()));
        releaseAll.dismiss();
        QTRY_VERIFY_WITH_TIMEOUT(
            sourceOutput.append(source.readAllStandardOutput()).contains("drag finished"), 10000);
        if (!dropOnShelf) {
            // The empty shelf goes once the drag is over.
            QTRY_COMPARE_WITH_TIMEOUT(list().size(), 0, 5000);
            return;
        }
        QTRY_COMPARE_WITH_TIMEOUT(list().at(0).toObject().value(QStringLiteral("items")).toArray(),
                                  QJsonArray{dropped}, 5000);
        // Past the moment the end of the drag closes empty shelves, the shelf with the file stays.
        QTest::qWait(400);
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

    // The frame of the agent's shelf window on the screen, read from the X server through xdotool.
    QRect agentShelfGeometry()
    {
        const Result windows = runTool(QStringLiteral("xdotool"),
                                       {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                        QStringLiteral("--pid"), QString::number(m_agent->processId())});
        for (const QString& window : windows.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QMap<QString, int> geometry =
                shellValues(runTool(QStringLiteral("xdotool"),
                                    {QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window})
                                .output);
            const QRect frame(geometry.value(QStringLiteral("X")), geometry.value(QStringLiteral("Y")),
                              geometry.value(QStringLiteral("WIDTH")),
                              geometry.value(QStringLiteral("HEIGHT")));
            if (frame.size() == QSize(180, 188)) {
                return frame;
            }
        }
        return {};
    }

    QPoint pointerLocation()
    {
        const QMap<QString, int> location =
            shellValues(runTool(QStringLiteral("xdotool"),
                                {QStringLiteral("getmouselocation"), QStringLiteral("--shell")})
                            .output);
        return {location.value(QStringLiteral("X"), -1), location.value(QStringLiteral("Y"), -1)};
    }

    // xdotool's "--shell" output: NAME=number lines.
    static QMap<QString, int> shellValues(const QString& output)
    {
        QMap<QString, int> values;
        for (const QString& line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const qsizetype equals = line.indexOf(QLatin1Char('='));
            if (equals > 0) {
                values.insert(line.left(equals), line.mid(equals + 1).toInt());
            }
        }
        return values;
    }

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
        return runTool(QStringLiteral(VANTROPE_BINARY), arguments, workingDirectory);
    }

    Result runTool(const QString& program, const QStringList& arguments, const QString& workingDirectory = {})
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(workingDirectory);
        process.start(program, arguments);
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
