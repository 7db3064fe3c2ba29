// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AgentUnderTest.h"
#include "support/TestSupport.h"

#include <csignal>
#include <fcntl.h>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <QTest>
#include <unistd.h>

using namespace Vantrope::Test;

namespace {

QStringList strings(std::initializer_list<const char*> values)
{
    QStringList result;
    for (const char* value : values) {
        result.append(QString::fromUtf8(value));
    }
    return result;
}

} // namespace

// The command line against a real agent on the test display and its private session bus: what a file
// name, a mistake or a missing bus does.
class TestCommandLineAgent final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_agent = std::make_unique<AgentUnderTest>();
        QVERIFY(writeFile(file("a.txt"), "a"));
    }

    void cleanup() { m_agent.reset(); }

    void refusesWhatTheAgentCannotRead()
    {
        QVERIFY(writeFile(file("secret.txt"), "s"));
        QVERIFY(QFile::setPermissions(file("secret.txt"), QFileDevice::Permissions()));
        // As root the agent would read anything: it runs without what lets it.
        QStringList asUser;
        if (::geteuid() == 0) {
            asUser = {QStringLiteral("setpriv"),
                      QStringLiteral("--bounding-set=-dac_override,-dac_read_search"),
                      QStringLiteral("--inh-caps=-dac_override,-dac_read_search")};
        }
        QVERIFY(m_agent->start({}, asUser));
        const auto added = m_agent->run({QStringLiteral("add"), file("a.txt"), file("secret.txt")});
        QCOMPARE(added.exitCode, 1);
        QCOMPARE(added.error,
                 QStringLiteral("vantrope: cannot read %1: Permission denied\n").arg(file("secret.txt")));
        QCOMPARE(m_agent->list().size(), 0);
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
            const QByteArray path = QFile::encodeName(m_agent->home()) + '/' + name;
            const int fd = ::open(path.constData(), O_WRONLY | O_CREAT, 0600);
            QVERIFY(fd >= 0);
            QCOMPARE(::write(fd, "x", 1), 1);
            ::close(fd);
            arguments.append(name);
        }
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->runRaw(arguments).exitCode, 0);
        QCOMPARE(m_agent->list().size(), 1);
        const QJsonArray onShelf = m_agent->items();
        QCOMPARE(onShelf.size(), items);
        QVERIFY(QFileInfo::exists(onShelf.first().toString()));

        const auto text = m_agent->run({QStringLiteral("list")});
        QCOMPARE(text.exitCode, 0);
        // One line per item, whatever its name holds.
        QCOMPARE(text.output.count('\n'), 1 + items);
        QVERIFY2(text.output.endsWith(listed), text.output.constData());
    }

    void withoutASessionBusNothingIsAutolaunched()
    {
        m_agent->environment().remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_agent->environment().insert(QStringLiteral("XDG_RUNTIME_DIR"), file("runtime"));
        // dbus-launch leaves the address of a bus it autolaunched for this display here.
        const QString launched = file(".dbus/session-bus");
        const auto stopLaunched = qScopeGuard([&launched] {
            for (const QString& name : QDir(launched).entryList(QDir::Files)) {
                const QByteArray content = readFile(launched + QLatin1Char('/') + name);
                const qsizetype at = content.indexOf("DBUS_SESSION_BUS_PID=");
                if (at >= 0) {
                    ::kill(content.mid(at + 21).split('\n').first().toInt(), SIGTERM);
                }
            }
        });
        const auto result = m_agent->run({QStringLiteral("list")});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.startsWith(QStringLiteral("vantrope: cannot reach the D-Bus session bus")),
                 qPrintable(result.error));
        QVERIFY2(result.error.contains(QStringLiteral("DBUS_SESSION_BUS_ADDRESS is not set")),
                 qPrintable(result.error));
        QVERIFY2(!QFileInfo::exists(launched), "a session bus was autolaunched");
    }

    // A stopped agent costs its caller a timeout, not a hang, and what the caller was told is what happened.
    void aStoppedAgentDoesNotActAfterItsCallerGaveUp()
    {
        QVERIFY(m_agent->start());
        ::kill(static_cast<pid_t>(m_agent->process().processId()), SIGSTOP);
        QElapsedTimer timer;
        timer.start();
        const auto added = m_agent->run({QStringLiteral("add"), file("a.txt")});
        QVERIFY(timer.elapsed() < 15000);
        ::kill(static_cast<pid_t>(m_agent->process().processId()), SIGCONT);
        QCOMPARE(added.exitCode, 1);
        QVERIFY2(added.error.contains(QStringLiteral("did not answer")), qPrintable(added.error));
        QCOMPARE(m_agent->list().size(), 0);
        QTRY_VERIFY(m_agent->log().contains("gave up waiting"));
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
            m_agent->environment().insert(QStringLiteral("QT_LOGGING_RULES"), rules);
        }
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({QStringLiteral("add"), file("a.txt")}).exitCode, 0);
        QCOMPARE(m_agent->run({QStringLiteral("quit")}).exitCode, 0);
        QVERIFY(m_agent->process().waitForFinished(5000));
        const QByteArray log = m_agent->log();
        QVERIFY(log.contains(" info vantrope."));
        QCOMPARE(log.contains(" debug vantrope."), debug);
    }

    void foldersOfOursAreClosedToOthers()
    {
        const QString data = file("data/vantrope");
        const QString cache = file("cache/vantrope");
        const QString users = file("users-folder");
        for (const QString& folder : QStringList{data, cache + QStringLiteral("/Text"), users}) {
            QVERIFY(QDir().mkpath(folder));
            QVERIFY(QFile::setPermissions(folder, QFileDevice::Permissions(0x7755)));
        }
        QVERIFY(QFile::setPermissions(cache, QFileDevice::Permissions(0x7755)));
        QVERIFY(m_agent->start());
        QCOMPARE(m_agent->run({QStringLiteral("add"), file("a.txt"), users}).exitCode, 0);
        // Closed shelves go to the recent list, with the paths of what they held.
        QCOMPARE(m_agent->run({QStringLiteral("close-all")}).exitCode, 0);
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

    void actionsAndRunOnARealShelf()
    {
        QVERIFY(m_agent->start());
        QVERIFY(writeFile(file("b.txt"), "b"));
        const auto added = m_agent->run({QStringLiteral("add"), file("a.txt"), file("b.txt")});
        QCOMPARE(added.exitCode, 0);
        const QString shelf = added.text();

        const auto listed = m_agent->run({QStringLiteral("actions"), QStringLiteral("--json")});
        QCOMPARE(listed.exitCode, 0);
        const QStringList offered = identifiers(listed.output);
        for (const char* expected :
             {"clear_shelf", "drag_session_stack_remove", "custom_pin", "global_preferences"}) {
            QVERIFY2(offered.contains(QString::fromUtf8(expected)), qPrintable(offered.join(u' ')));
        }
        // Renaming takes exactly one item; the shelf is not pinned, so it can't be unpinned.
        QVERIFY(!offered.contains(QStringLiteral("drag_session_stack_rename")));
        QVERIFY(!offered.contains(QStringLiteral("custom_unpin")));
        // The shelf used last is the one named.
        const auto named = m_agent->run(
            {QStringLiteral("actions"), QStringLiteral("--shelf"), shelf, QStringLiteral("--json")});
        QCOMPARE(identifiers(named.output), offered);
        const auto text = m_agent->run({QStringLiteral("actions")});
        QVERIFY2(text.text().contains(QStringLiteral("clear_shelf\t")), qPrintable(text.text()));

        const auto pinned = m_agent->run({QStringLiteral("run"), QStringLiteral("custom_pin")});
        QCOMPARE(pinned.exitCode, 0);
        QVERIFY(m_agent->list()
                    .at(0)
                    .toObject()
                    .value(QStringLiteral("label"))
                    .toObject()
                    .value(QStringLiteral("pinned"))
                    .toBool());

        const auto cleared = m_agent->run(
            {QStringLiteral("run"), QStringLiteral("clear_shelf"), QStringLiteral("--shelf"), shelf});
        QCOMPARE(cleared.exitCode, 0);
        QCOMPARE(cleared.error, QString());
        QTRY_COMPARE(m_agent->items(0).size(), 0);
        // Clearing the shelf leaves the files alone.
        QVERIFY(QFile::exists(file("a.txt")) && QFile::exists(file("b.txt")));
    }

    void runRefusesWhatItCannotDo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown action")
            << strings({"run", "no_such_action"})
            << "vantrope: \"no_such_action\" is not on offer for this shelf's items.\n";
        QTest::newRow("rename needs one item")
            << strings({"run", "drag_session_stack_rename"})
            << "vantrope: \"drag_session_stack_rename\" is not on offer for this shelf's items.\n";
        QTest::newRow("unknown shelf") << strings({"run", "clear_shelf", "--shelf", "NOPE"})
                                       << "vantrope: no open shelf has the identifier \"NOPE\"\n";
        QTest::newRow("actions of an unknown shelf")
            << strings({"actions", "--shelf", "NOPE"})
            << "vantrope: no open shelf has the identifier \"NOPE\"\n";
    }

    void runRefusesWhatItCannotDo()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        QVERIFY(m_agent->start());
        QVERIFY(writeFile(file("b.txt"), "b"));
        QCOMPARE(m_agent->run({QStringLiteral("add"), file("a.txt"), file("b.txt")}).exitCode, 0);
        const auto result = m_agent->run(arguments);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error, error);
        QCOMPARE(result.output, QByteArray());
        // Nothing happened to the shelf.
        QCOMPARE(m_agent->items(0).size(), 2);
    }

    void runWithoutAShelf()
    {
        QVERIFY(m_agent->start());
        const auto result = m_agent->run({QStringLiteral("run"), QStringLiteral("clear_shelf")});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error, QStringLiteral("vantrope: no shelf is open\n"));
    }

    void compressGivesAnArchiveOtherProgramsRead()
    {
        QVERIFY(m_agent->start());
        QVERIFY(writeFile(file("b.txt"), "bb"));
        QVERIFY(writeFile(file("c d.txt"), "ccc"));
        QCOMPARE(
            m_agent->run({QStringLiteral("add"), file("a.txt"), file("b.txt"), file("c d.txt")}).exitCode, 0);
        const auto listed = m_agent->run({QStringLiteral("actions"), QStringLiteral("--json")});
        QCOMPARE(listed.exitCode, 0);
        if (!identifiers(listed.output).contains(QStringLiteral("compress"))) {
            QSKIP("the compress action is not on offer: this build has no desktop actions");
        }
        const auto compressed = m_agent->run({QStringLiteral("run"), QStringLiteral("compress")});
        QCOMPARE(compressed.exitCode, 0);
        QString archive = compressed.text();
        if (!archive.endsWith(QStringLiteral(".zip"))) {
            // The action reveals the archive rather than naming it: it is the one zip in the agent's home.
            const auto found = m_agent->runTool(
                QStringLiteral("find"), {m_agent->home(), QStringLiteral("-name"), QStringLiteral("*.zip")});
            archive = found.text();
        }
        QVERIFY2(QFileInfo(archive).isFile(), qPrintable(archive));
        const auto listing = m_agent->runTool(QStringLiteral("unzip"), {QStringLiteral("-l"), archive});
        QCOMPARE(listing.exitCode, 0);
        for (const char* name : {"a.txt", "b.txt", "c d.txt"}) {
            QVERIFY2(listing.text().contains(QString::fromUtf8(name)), qPrintable(listing.text()));
        }
    }

    void removeTakesNamedItemsOff_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("by number") << strings({"remove", "2"}) << strings({"a.txt", "c.txt"});
        QTest::newRow("by path") << strings({"remove", "@c.txt"}) << strings({"a.txt", "b.txt"});
        QTest::newRow("by a path relative to the caller")
            << strings({"remove", "b.txt"}) << strings({"a.txt", "c.txt"});
        QTest::newRow("the same item twice")
            << strings({"remove", "1", "@a.txt"}) << strings({"b.txt", "c.txt"});
        QTest::newRow("several, on the named shelf")
            << strings({"remove", "3", "1", "--shelf", "%shelf"}) << strings({"b.txt"});
        QTest::newRow("all of them") << strings({"remove", "1", "2", "3"}) << QStringList();
    }

    void removeTakesNamedItemsOff()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, left);
        const QString shelf = shelfOfThree();
        const auto removed = m_agent->run(expand(arguments, shelf), m_agent->home());
        QCOMPARE(removed.exitCode, 0);
        QCOMPARE(removed.error, QString());
        QStringList expected;
        for (const QString& name : std::as_const(left)) {
            expected.append(m_agent->path(name));
        }
        QJsonArray items = m_agent->items(0);
        QStringList remaining;
        for (const QJsonValue& item : std::as_const(items)) {
            remaining.append(item.toString());
        }
        QCOMPARE(remaining, expected);
        // What was printed is what went.
        QCOMPARE(removed.text().split(u'\n', Qt::SkipEmptyParts).size(), 3 - left.size());
        // Off the shelf, not off the disk.
        for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
            QVERIFY(QFile::exists(file(name)));
        }
    }

    void removeAndLabelRefuseBadInput_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        QTest::newRow("a number past the end")
            << strings({"remove", "4"})
            << "vantrope: shelf %shelf has no item 4; its items are numbered 1 to 3\n";
        QTest::newRow("zero") << strings({"remove", "0"})
                              << "vantrope: shelf %shelf has no item 0; its items are numbered 1 to 3\n";
        QTest::newRow("one unknown path among good ones removes nothing")
            << strings({"remove", "1", "@nowhere.txt", "2"})
            << "vantrope: shelf %shelf holds no item \"@nowhere.txt\"\n";
        QTest::newRow("remove on an unknown shelf")
            << strings({"remove", "1", "--shelf", "NOPE"})
            << "vantrope: no open shelf has the identifier \"NOPE\"\n";
        QTest::newRow("an unknown colour")
            << strings({"label", "--color", "purple", "--name", "lost"})
            << "vantrope: there is no colour \"purple\"; the colours are monochrome, orange, yellow, green, "
               "turquoise, blue, pink, coral, khaki, spring\n";
        QTest::newRow("a colour's title is no identifier")
            << strings({"label", "--color", "Blue"})
            << "vantrope: there is no colour \"Blue\"; the colours are monochrome, orange, yellow, green, "
               "turquoise, blue, pink, coral, khaki, spring\n";
        QTest::newRow("label on an unknown shelf") << strings({"label", "--pin", "--shelf", "NOPE"})
                                                   << "vantrope: no open shelf has the identifier \"NOPE\"\n";
    }

    void removeAndLabelRefuseBadInput()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const QString shelf = shelfOfThree();
        const QJsonObject before = m_agent->list().at(0).toObject();
        const auto result = m_agent->run(expand(arguments, shelf));
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error, expand({error}, shelf).first());
        QCOMPARE(result.output, QByteArray());
        // Nothing changed: no item went, the label is as it was.
        QCOMPARE(m_agent->list().at(0).toObject(), before);
    }

    void labelChangesOnlyWhatIsGiven()
    {
        const QString shelf = shelfOfThree();
        const auto labelled = m_agent->run({QStringLiteral("label"), QStringLiteral("--name"),
                                            QStringLiteral("  Tax\nreturn 2026 "), QStringLiteral("--color"),
                                            QStringLiteral("khaki"), QStringLiteral("--pin")});
        QCOMPARE(labelled.exitCode, 0);
        QCOMPARE(labelled.text(), shelf);
        QCOMPARE(label(), (QJsonObject{{QStringLiteral("name"), QStringLiteral("Tax return 2026")},
                                       {QStringLiteral("color"), QStringLiteral("khaki")},
                                       {QStringLiteral("pinned"), true}}));

        QCOMPARE(m_agent->run({QStringLiteral("label"), QStringLiteral("--unpin")}).exitCode, 0);
        QCOMPARE(label().value(QStringLiteral("pinned")), QJsonValue(false));
        QCOMPARE(label().value(QStringLiteral("name")), QJsonValue(QStringLiteral("Tax return 2026")));
        QCOMPARE(label().value(QStringLiteral("color")), QJsonValue(QStringLiteral("khaki")));

        // A page pasted as a name is cut to one line of 256 characters.
        const QString page = QString(2000, u'x') + QStringLiteral("\n") + QString(2000, u'y');
        QCOMPARE(m_agent->run({QStringLiteral("label"), QStringLiteral("--name"), page}).exitCode, 0);
        QCOMPARE(label().value(QStringLiteral("name")).toString(), QString(256, u'x'));

        QCOMPARE(m_agent->run({QStringLiteral("label"), QStringLiteral("--name=")}).exitCode, 0);
        QCOMPARE(label().value(QStringLiteral("name")), QJsonValue(QJsonValue::Null));
    }

    // The settings popover opened by a real click on the shelf's colour grabber: the name typed there is
    // the window's title, and the shelf keeps it through a restart of the agent.
    void popoverNameIsTheTitleAndOutlivesTheAgent()
    {
        QVERIFY(m_agent->start());
        const auto added = m_agent->run({QStringLiteral("add"), file("a.txt")});
        QCOMPARE(added.exitCode, 0);
        const QString shelf = added.text();
        QRect frame;
        QTRY_VERIFY((frame = m_agent->shelfGeometry()).isValid());
        // The grabber is the bar at the top of the card.
        const QPoint grabber(frame.center().x(), frame.top() + 15);
        const QStringList before = visibleWindows();
        QCOMPARE(m_agent
                     ->runTool(QStringLiteral("xdotool"),
                               {QStringLiteral("mousemove"), QString::number(grabber.x()),
                                QString::number(grabber.y()), QStringLiteral("click"), QStringLiteral("1")})
                     .exitCode,
                 0);
        QTRY_VERIFY(popoverShown(before));
        QCOMPARE(m_agent->runTool(QStringLiteral("xdotool"), {QStringLiteral("type"), QStringLiteral("Trip")})
                     .exitCode,
                 0);
        QTRY_COMPARE(label().value(QStringLiteral("name")), QJsonValue(QStringLiteral("Trip")));
        QCOMPARE(
            m_agent->runTool(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("Escape")})
                .exitCode,
            0);
        QTRY_VERIFY(!popoverShown(before));
        const auto titled = m_agent->runTool(QStringLiteral("xdotool"),
                                             {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                              QStringLiteral("--name"), QStringLiteral("^Trip$")});
        QCOMPARE(titled.exitCode, 0);
        QVERIFY(!titled.text().isEmpty());

        QCOMPARE(m_agent->run({QStringLiteral("quit")}).exitCode, 0);
        QVERIFY(m_agent->process().waitForFinished(5000));
        QVERIFY(m_agent->start());
        const auto reopened = m_agent->run({QStringLiteral("open-recent")});
        QCOMPARE(reopened.exitCode, 0);
        QCOMPARE(reopened.text(), shelf);
        QCOMPARE(label().value(QStringLiteral("name")), QJsonValue(QStringLiteral("Trip")));
    }

private:
    // A shelf with a.txt, b.txt and c.txt on a started agent; its identifier.
    QString shelfOfThree()
    {
        if (!m_agent->start()) {
            return {};
        }
        writeFile(file("b.txt"), "b");
        writeFile(file("c.txt"), "c");
        const auto added = m_agent->run({QStringLiteral("add"), file("a.txt"), file("b.txt"), file("c.txt")});
        return added.exitCode == 0 ? added.text() : QString();
    }

    // "@name" is that file in the agent's home, "%shelf" the shelf's identifier.
    QStringList expand(const QStringList& arguments, const QString& shelf) const
    {
        QStringList expanded;
        for (QString argument : arguments) {
            argument.replace(QStringLiteral("%shelf"), shelf);
            argument.replace(QStringLiteral("\"@"),
                             QStringLiteral("\"") + m_agent->home() + QLatin1Char('/'));
            if (argument.startsWith(u'@')) {
                argument = m_agent->path(argument.mid(1));
            }
            expanded.append(argument);
        }
        return expanded;
    }

    QJsonObject label() { return m_agent->list().at(0).toObject().value(QStringLiteral("label")).toObject(); }

    QStringList visibleWindows()
    {
        const auto windows =
            m_agent->runTool(QStringLiteral("xdotool"),
                             {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                              QStringLiteral("--pid"), QString::number(m_agent->process().processId())});
        return QString::fromLatin1(windows.output).split(u'\n', Qt::SkipEmptyParts);
    }

    // A window of the agent that was not there before is up, below the shelf's top: the popover.
    bool popoverShown(const QStringList& before)
    {
        const QRect shelf = m_agent->shelfGeometry();
        for (const QString& window : visibleWindows()) {
            const QRect frame = m_agent->windowGeometry(window);
            if (!before.contains(window) && frame.isValid() && frame.top() > shelf.top()) {
                return true;
            }
        }
        return false;
    }

    static QStringList identifiers(const QByteArray& json)
    {
        QStringList result;
        for (const QJsonValue& action : QJsonDocument::fromJson(json).array()) {
            result.append(action.toObject().value(QStringLiteral("identifier")).toString());
            if (action.toObject().value(QStringLiteral("title")).toString().isEmpty()) {
                result.append(QStringLiteral("<untitled>"));
            }
        }
        return result;
    }

    QString file(const char* name) const { return m_agent->path(QString::fromUtf8(name)); }

    std::unique_ptr<AgentUnderTest> m_agent;
};

QTEST_GUILESS_MAIN(TestCommandLineAgent)
#include "TestCommandLineAgent.moc"
