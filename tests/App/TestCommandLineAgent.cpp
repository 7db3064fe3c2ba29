#include "support/TestSupport.h"

#include <csignal>
#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

// The command line against a real agent on the test display and its private session bus: what a file
// name, a mistake or a missing bus does.
class TestCommandLineAgent final : public QObject {
    Q_OBJECT

    struct Result {
        int exitCode = -1;
        QByteArray output;
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
        m_environment.remove(QStringLiteral("QT_LOGGING_RULES"));
        QVERIFY(Vantrope::Test::writeFile(file("a.txt"), "a"));
    }

    void cleanup()
    {
        if (m_agent && m_agent->state() != QProcess::NotRunning) {
            ::kill(static_cast<pid_t>(m_agent->processId()), SIGCONT);
            m_agent->kill();
            m_agent->waitForFinished();
        }
        m_agent.reset();
    }

    void refusesWhatTheAgentCannotRead()
    {
        QVERIFY(Vantrope::Test::writeFile(file("secret.txt"), "s"));
        QVERIFY(QFile::setPermissions(file("secret.txt"), QFileDevice::Permissions()));
        startAgent({}, true);
        const Result added = run({QStringLiteral("add"), file("a.txt"), file("secret.txt")});
        QCOMPARE(added.exitCode, 1);
        QCOMPARE(added.error,
                 QStringLiteral("vantrope: cannot read %1: Permission denied\n").arg(file("secret.txt")));
        QCOMPARE(list().size(), 0);
    }

    void addsEachFileOnceWhateverItsName_data()
    {
        QTest::addColumn<QList<QByteArray>>("names");
        QTest::addColumn<int>("items");
        QTest::addColumn<QByteArray>("listed");
        QTest::newRow("the same file four times")
            << QList<QByteArray>{"a.txt", "a.txt", "./a.txt", "a.txt"} << 1 << QByteArray("/a.txt\n");
        QTest::newRow("a name that is no UTF-8")
            << QList<QByteArray>{"caf\xe9.txt"} << 1 << QByteArray("caf\xef\xbf\xbd.txt\n");
        QTest::newRow("a name with a line break and a tab")
            << QList<QByteArray>{"two\nlines\t.txt"} << 1 << QByteArray("two\\nlines\\t.txt\n");
    }

    void addsEachFileOnceWhateverItsName()
    {
        QFETCH(QList<QByteArray>, names);
        QFETCH(int, items);
        QFETCH(QByteArray, listed);
        QList<QByteArray> arguments{"add"};
        for (const QByteArray& name : names) {
            const QByteArray path = QFile::encodeName(m_home->path()) + '/' + name;
            const int fd = ::open(path.constData(), O_WRONLY | O_CREAT, 0600);
            QVERIFY(fd >= 0);
            QCOMPARE(::write(fd, "x", 1), 1);
            ::close(fd);
            arguments.append(name);
        }
        startAgent();
        const Result added = runRaw(arguments);
        QCOMPARE(added.exitCode, 0);
        const QJsonArray shelves = list();
        QCOMPARE(shelves.size(), 1);
        const QJsonArray onShelf = shelves.first().toObject().value(QStringLiteral("items")).toArray();
        QCOMPARE(onShelf.size(), items);
        QVERIFY(QFileInfo::exists(onShelf.first().toString()));

        const Result text = run({QStringLiteral("list")});
        QCOMPARE(text.exitCode, 0);
        // One line per item, whatever its name holds.
        QCOMPARE(text.output.count('\n'), 1 + items);
        QVERIFY2(text.output.endsWith(listed), text.output.constData());
    }

    void withoutASessionBusNothingIsAutolaunched()
    {
        m_environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home->filePath(QStringLiteral("runtime")));
        // dbus-launch leaves the address of a bus it autolaunched for this display here.
        const QString launched = m_home->filePath(QStringLiteral(".dbus/session-bus"));
        const auto stopLaunched = qScopeGuard([&launched] {
            for (const QString& name : QDir(launched).entryList(QDir::Files)) {
                const QByteArray content = Vantrope::Test::readFile(launched + QLatin1Char('/') + name);
                const qsizetype at = content.indexOf("DBUS_SESSION_BUS_PID=");
                if (at >= 0) {
                    ::kill(content.mid(at + 21).split('\n').first().toInt(), SIGTERM);
                }
            }
        });
        const Result result = run({QStringLiteral("list")});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.startsWith(QStringLiteral("vantrope: cannot reach the D-Bus session bus")),
                 qPrintable(result.error));
        QVERIFY2(result.error.contains(QStringLiteral("DBUS_SESSION_BUS_ADDRESS is not set")),
                 qPrintable(result.error));
        QVERIFY2(!QFileInfo::exists(launched), "a session bus was autolaunched");
    }

    void aStoppedAgentDoesNotActAfterItsCallerGaveUp()
    {
        startAgent();
        ::kill(static_cast<pid_t>(m_agent->processId()), SIGSTOP);
        const Result added = run({QStringLiteral("add"), file("a.txt")});
        ::kill(static_cast<pid_t>(m_agent->processId()), SIGCONT);
        QCOMPARE(added.exitCode, 1);
        QVERIFY2(added.error.contains(QStringLiteral("did not answer")), qPrintable(added.error));
        // What the caller was told is what happened.
        QCOMPARE(list().size(), 0);
        QTRY_VERIFY(m_agentLog.append(m_agent->readAllStandardError()).contains("gave up waiting"));
    }

    void usageMistakesExitWithTwo()
    {
        startAgent();
        const Result bogus = run({QStringLiteral("bogus")});
        QCOMPARE(bogus.exitCode, 2);
        QVERIFY2(bogus.error.startsWith(QStringLiteral("vantrope: no such file or command: ")),
                 qPrintable(bogus.error));
        QCOMPARE(list().size(), 0);
    }

    void debugLinesOnlyWhenAskedFor_data()
    {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<bool>("debug");
        QTest::newRow("by default") << QString() << false;
        QTest::newRow("asked for") << QStringLiteral("vantrope.*.debug=true") << true;
    }

    void debugLinesOnlyWhenAskedFor()
    {
        QFETCH(QString, rules);
        QFETCH(bool, debug);
        if (!rules.isEmpty()) {
            m_environment.insert(QStringLiteral("QT_LOGGING_RULES"), rules);
        }
        startAgent();
        QCOMPARE(run({QStringLiteral("add"), file("a.txt")}).exitCode, 0);
        QCOMPARE(run({QStringLiteral("quit")}).exitCode, 0);
        QVERIFY(m_agent->waitForFinished(5000));
        m_agentLog.append(m_agent->readAllStandardError());
        QVERIFY(m_agentLog.contains(" info vantrope."));
        QCOMPARE(m_agentLog.contains(" debug vantrope."), debug);
    }

    void foldersOfOursAreClosedToOthers()
    {
        const QString data = m_home->filePath(QStringLiteral("data/vantrope"));
        const QString cache = m_home->filePath(QStringLiteral("cache/vantrope"));
        const QString users = m_home->filePath(QStringLiteral("users-folder"));
        for (const QString& folder : QStringList{data, cache + QStringLiteral("/Text"), users}) {
            QVERIFY(QDir().mkpath(folder));
            QVERIFY(QFile::setPermissions(folder, QFileDevice::Permissions(0x7755)));
        }
        QVERIFY(QFile::setPermissions(cache, QFileDevice::Permissions(0x7755)));
        startAgent();
        QCOMPARE(run({QStringLiteral("add"), file("a.txt"), users}).exitCode, 0);
        // Closed shelves go to the recent list, with the paths of what they held.
        QCOMPARE(run({QStringLiteral("close-all")}).exitCode, 0);
        const QString sessions = data + QStringLiteral("/.drag_sessions");
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(sessions), 10000);

        const auto othersMay = [](const QString& path) {
            return QFileInfo(path).permissions() & QFileDevice::Permissions(0x0077);
        };
        for (const QString& path : QStringList{data, cache, cache + QStringLiteral("/Text"), sessions}) {
            QVERIFY2(!othersMay(path), qPrintable(path));
        }
        // The user's own things on a shelf stay as they are.
        QVERIFY(othersMay(users));
    }

private:
    QString file(const char* name) const { return m_home->filePath(QString::fromUtf8(name)); }

    // As root the agent would read anything; `asUser` drops what lets it.
    void startAgent(const QStringList& arguments = {}, bool asUser = false)
    {
        m_agentLog.clear();
        m_agent = std::make_unique<QProcess>();
        m_agent->setProcessEnvironment(m_environment);
        QStringList command{QStringLiteral(VANTROPE_BINARY)};
        if (asUser && ::geteuid() == 0) {
            command = QStringList{QStringLiteral("setpriv"),
                                  QStringLiteral("--bounding-set=-dac_override,-dac_read_search"),
                                  QStringLiteral("--inh-caps=-dac_override,-dac_read_search")} +
                      command;
        }
        m_agent->start(command.first(), command.mid(1) + arguments);
        QVERIFY(m_agent->waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(m_agentLog.append(m_agent->readAllStandardError()).contains("started on"),
                                 10000);
    }

    Result run(const QStringList& arguments)
    {
        QList<QByteArray> bytes;
        for (const QString& argument : arguments) {
            bytes.append(argument.toUtf8());
        }
        return runRaw(bytes);
    }

    // QProcess passes arguments on as UTF-8 text, which cannot carry every byte of a file name; a shell
    // builds them from octal escapes instead.
    Result runRaw(const QList<QByteArray>& arguments)
    {
        QByteArray script = "set --;";
        for (const QByteArray& argument : arguments) {
            QByteArray escaped;
            for (const char byte : argument) {
                escaped +=
                    '\\' + QByteArray::number(static_cast<unsigned char>(byte), 8).rightJustified(3, '0');
            }
            script += " a=$(printf '" + escaped + "_'); set -- \"$@\" \"${a%_}\";";
        }
        script += " exec \"$0\" \"$@\"";
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_home->path());
        process.start(QStringLiteral("/bin/sh"),
                      {QStringLiteral("-c"), QString::fromLatin1(script), QStringLiteral(VANTROPE_BINARY)});
        if (!process.waitForFinished(20000)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitCode(), process.readAllStandardOutput(),
                QString::fromLocal8Bit(process.readAllStandardError())};
    }

    QJsonArray list()
    {
        const Result result = run({QStringLiteral("list"), QStringLiteral("--json")});
        const QJsonDocument document = QJsonDocument::fromJson(result.output);
        if (result.exitCode != 0 || !document.isArray()) {
            qWarning().noquote() << "list --json failed:" << result.exitCode << result.error;
            return {{QStringLiteral("list failed")}};
        }
        return document.array();
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_agent;
    QByteArray m_agentLog;
};

QTEST_GUILESS_MAIN(TestCommandLineAgent)
#include "TestCommandLineAgent.moc"
