// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/CommandLine.h"
#include "App/CommandLineClient.h"
#include "App/LocalFileName.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;

namespace {

template<class... Ts> struct Overloaded : Ts... {
    using Ts::operator()...;
};

// One line per request, so that a data row can say what it expects.
QString describe(const CommandLine::Request& request)
{
    return std::visit(
        Overloaded{
            [](const CommandLine::RunAgent& run) -> QString {
                return (QStringList{QStringLiteral("run")} + run.files).join(u' ');
            },
            [](const CommandLine::ShowHelp&) -> QString { return QStringLiteral("help"); },
            [](const CommandLine::ShowVersion&) -> QString { return QStringLiteral("version"); },
            [](const CommandLine::Invalid& invalid) -> QString {
                return QStringLiteral("invalid: ") + invalid.message;
            },
            [](const CommandLine::AddFiles& add) -> QString {
                return (QStringList{QStringLiteral("add")} + add.files).join(u' ');
            },
            [](const CommandLine::NewShelf&) -> QString { return QStringLiteral("new"); },
            [](const CommandLine::OpenRecent& open) -> QString {
                return QStringLiteral("open-recent ") + open.identifier;
            },
            [](const CommandLine::CloseAll&) -> QString { return QStringLiteral("close-all"); },
            [](const CommandLine::Quit&) -> QString { return QStringLiteral("quit"); },
            [](const CommandLine::List& list) -> QString {
                return list.json ? QStringLiteral("list json") : QStringLiteral("list");
            },
            [](const CommandLine::ListActions& list) -> QString {
                return QStringLiteral("actions shelf=") + list.shelf +
                       (list.json ? QStringLiteral(" json") : QString());
            },
            [](const CommandLine::RunAction& run) -> QString {
                QString text =
                    QStringLiteral("run-action ") + run.action + QStringLiteral(" shelf=") + run.shelf;
                for (auto it = run.settings.cbegin(); it != run.settings.cend(); ++it) {
                    text += QLatin1Char(' ') + it.key() + QLatin1Char('=') + it.value().toString();
                }
                return text;
            },
            [](const CommandLine::RemoveItems& remove) -> QString {
                return QStringLiteral("remove [%1] shelf=%2").arg(remove.items.join(u'|'), remove.shelf);
            },
            [](const CommandLine::SetLabel& label) -> QString {
                QString text = QStringLiteral("label shelf=") + label.shelf;
                if (label.name) {
                    text += QStringLiteral(" name=[%1]").arg(*label.name);
                }
                if (label.color) {
                    text += QStringLiteral(" color=") + *label.color;
                }
                if (label.pinned) {
                    text += *label.pinned ? QStringLiteral(" pin") : QStringLiteral(" unpin");
                }
                return text;
            },
            [](const CommandLine::Folders& folders) -> QString {
                static const char* const verbs[] = {"list", "add", "remove", "pause", "resume"};
                return QStringLiteral("folders %1 [%2]%3")
                    .arg(QString::fromUtf8(verbs[int(folders.verb)]), folders.argument,
                         folders.json ? QStringLiteral(" json") : QString());
            },
            [](const CommandLine::Settings& settings) -> QString {
                return settings.value
                           ? QStringLiteral("settings set %1 [%2]").arg(settings.key, *settings.value)
                           : QStringLiteral("settings get ") + settings.key;
            },
        },
        request);
}

} // namespace

class TestCommandLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void parses_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("expected");

        const auto row = [](const char* name, QStringList arguments, const char* expected) {
            QTest::newRow(name) << arguments << QString::fromUtf8(expected);
        };
        row("nothing runs the agent", {}, "run");
        row("bare files are handed over, made absolute",
            {QStringLiteral("a.txt"), QStringLiteral("../b c.txt")}, "run /work/dir/a.txt /work/b c.txt");
        row("absolute paths stay", {QStringLiteral("/tmp/./x//y")}, "run /tmp/x/y");
        row("a command word after a file is a file", {QStringLiteral("x"), QStringLiteral("list")},
            "run /work/dir/x /work/dir/list");
        row("-- makes a command word a file", {QStringLiteral("--"), QStringLiteral("new")},
            "run /work/dir/new");
        row("add", {QStringLiteral("add"), QStringLiteral("f"), QStringLiteral("/g")}, "add /work/dir/f /g");
        row("add takes dashed names after --",
            {QStringLiteral("add"), QStringLiteral("--"), QStringLiteral("-f")}, "add /work/dir/-f");
        row("add without files", {QStringLiteral("add")}, "invalid: \"add\" needs at least one file");
        row("new", {QStringLiteral("new")}, "new");
        row("new with an operand", {QStringLiteral("new"), QStringLiteral("x")},
            "invalid: \"new\" takes no arguments");
        row("open-recent", {QStringLiteral("open-recent")}, "open-recent ");
        row("open-recent with an id", {QStringLiteral("open-recent"), QStringLiteral("AB-12")},
            "open-recent AB-12");
        row("open-recent with two ids",
            {QStringLiteral("open-recent"), QStringLiteral("a"), QStringLiteral("b")},
            "invalid: \"open-recent\" takes at most one shelf identifier");
        row("close-all", {QStringLiteral("close-all")}, "close-all");
        row("quit", {QStringLiteral("quit")}, "quit");
        row("list", {QStringLiteral("list")}, "list");
        row("list --json", {QStringLiteral("list"), QStringLiteral("--json")}, "list json");
        row("--json belongs to list only", {QStringLiteral("new"), QStringLiteral("--json")},
            "invalid: unknown argument \"--json\"; see \"vantrope --help\"");
        row("actions", {QStringLiteral("actions")}, "actions shelf=");
        row("actions for a shelf, as json",
            {QStringLiteral("actions"), QStringLiteral("--json"), QStringLiteral("--shelf"),
             QStringLiteral("AB-1")},
            "actions shelf=AB-1 json");
        row("--shelf=ID", {QStringLiteral("actions"), QStringLiteral("--shelf=AB-1")}, "actions shelf=AB-1");
        row("--shelf without an identifier", {QStringLiteral("actions"), QStringLiteral("--shelf")},
            "invalid: \"--shelf\" needs a shelf identifier");
        row("actions takes no operand", {QStringLiteral("actions"), QStringLiteral("compress")},
            "invalid: \"actions\" takes no arguments");
        row("run", {QStringLiteral("run"), QStringLiteral("compress")}, "run-action compress shelf=");
        row("run on a shelf, option first",
            {QStringLiteral("run"), QStringLiteral("--shelf"), QStringLiteral("X"),
             QStringLiteral("clear_shelf")},
            "run-action clear_shelf shelf=X");
        row("run with settings",
            {QStringLiteral("run"), QStringLiteral("operationImageResize"), QStringLiteral("--set"),
             QStringLiteral("width=1600"), QStringLiteral("--set=name=a=b"), QStringLiteral("--set"),
             QStringLiteral("empty=")},
            "run-action operationImageResize shelf= empty= name=a=b width=1600");
        row("--set without a key",
            {QStringLiteral("run"), QStringLiteral("x"), QStringLiteral("--set"), QStringLiteral("=1")},
            "invalid: \"--set\" needs a setting as key=value, such as width=1600");
        row("--set without a value", {QStringLiteral("run"), QStringLiteral("x"), QStringLiteral("--set")},
            "invalid: \"--set\" needs a setting as key=value, such as width=1600");
        row("--set belongs to run",
            {QStringLiteral("actions"), QStringLiteral("--set"), QStringLiteral("a=b")},
            "invalid: unknown argument \"--set\"; see \"vantrope --help\"");
        row("run without an action", {QStringLiteral("run")},
            "invalid: \"run\" needs one action identifier; \"vantrope actions\" lists them");
        row("run with two actions", {QStringLiteral("run"), QStringLiteral("a"), QStringLiteral("b")},
            "invalid: \"run\" needs one action identifier; \"vantrope actions\" lists them");
        row("--shelf belongs to actions and run",
            {QStringLiteral("list"), QStringLiteral("--shelf"), QStringLiteral("X")},
            "invalid: unknown argument \"--shelf\"; see \"vantrope --help\"");
        row("run --json is refused", {QStringLiteral("run"), QStringLiteral("x"), QStringLiteral("--json")},
            "invalid: unknown argument \"--json\"; see \"vantrope --help\"");
        row("remove by number, path and address",
            {QStringLiteral("remove"), QStringLiteral("2"), QStringLiteral("sub/../a.txt"),
             QStringLiteral("/tmp/b"), QStringLiteral("https://x.org/a")},
            "remove [2|/work/dir/a.txt|/tmp/b|https://x.org/a] shelf=");
        row("remove names an item once",
            {QStringLiteral("remove"), QStringLiteral("a"), QStringLiteral("./a")},
            "remove [/work/dir/a] shelf=");
        row("remove a dashed name after --",
            {QStringLiteral("remove"), QStringLiteral("--"), QStringLiteral("--pin")},
            "remove [/work/dir/--pin] shelf=");
        row("remove without items",
            {QStringLiteral("remove"), QStringLiteral("--shelf"), QStringLiteral("S")},
            "invalid: \"remove\" needs at least one item: its number or its path as \"vantrope list\" shows "
            "it");
        row("label everything",
            {QStringLiteral("label"), QStringLiteral("--name"), QStringLiteral("Two words"),
             QStringLiteral("--color=blue"), QStringLiteral("--pin"), QStringLiteral("--shelf"),
             QStringLiteral("S")},
            "label shelf=S name=[Two words] color=blue pin");
        row("an empty name is a name to remove", {QStringLiteral("label"), QStringLiteral("--name=")},
            "label shelf= name=[]");
        row("a name may start with a dash",
            {QStringLiteral("label"), QStringLiteral("--name"), QStringLiteral("--unpin")},
            "label shelf= name=[--unpin]");
        row("pin and unpin", {QStringLiteral("label"), QStringLiteral("--pin"), QStringLiteral("--unpin")},
            "invalid: \"--pin\" and \"--unpin\" exclude each other");
        row("label without a change", {QStringLiteral("label")},
            "invalid: \"label\" needs at least one of --name, --color, --pin and --unpin");
        row("--name without a name", {QStringLiteral("label"), QStringLiteral("--name")},
            "invalid: \"--name\" needs a name (\"\" removes the name)");
        row("--color without a colour", {QStringLiteral("label"), QStringLiteral("--color=")},
            "invalid: \"--color\" needs a colour, such as \"blue\"");
        row("help wins over a command", {QStringLiteral("add"), QStringLiteral("-h")}, "help");
        row("help after -- is a file",
            {QStringLiteral("add"), QStringLiteral("--"), QStringLiteral("--help")}, "add /work/dir/--help");
        row("version", {QStringLiteral("list"), QStringLiteral("--version")}, "version");

        // Watched folders.
        row("folders alone lists", {QStringLiteral("folders")}, "folders list []");
        row("folders list --json",
            {QStringLiteral("folders"), QStringLiteral("list"), QStringLiteral("--json")},
            "folders list [] json");
        row("folders add makes the path absolute",
            {QStringLiteral("folders"), QStringLiteral("add"), QStringLiteral("../Inbox/")},
            "folders add [/work/Inbox]");
        row("folders add takes a dashed name after --",
            {QStringLiteral("folders"), QStringLiteral("add"), QStringLiteral("--"), QStringLiteral("-in")},
            "folders add [/work/dir/-in]");
        row("a folder named like a verb",
            {QStringLiteral("folders"), QStringLiteral("add"), QStringLiteral("list")},
            "folders add [/work/dir/list]");
        row("folders pause", {QStringLiteral("folders"), QStringLiteral("pause"), QStringLiteral("AB-1")},
            "folders pause [AB-1]");
        row("folders resume without an identifier", {QStringLiteral("folders"), QStringLiteral("resume")},
            "invalid: \"folders resume\" needs one folder identifier; \"vantrope folders list\" shows them");
        row("folders add with two folders",
            {QStringLiteral("folders"), QStringLiteral("add"), QStringLiteral("a"), QStringLiteral("b")},
            "invalid: \"folders add\" needs one folder");
        row("an unknown folders verb",
            {QStringLiteral("folders"), QStringLiteral("watch"), QStringLiteral("x")},
            "invalid: unknown folders command \"watch\"; \"folders\" needs one of: list, add PATH, remove "
            "ID, "
            "pause ID, resume ID");
        row("--json belongs to folders list",
            {QStringLiteral("folders"), QStringLiteral("pause"), QStringLiteral("--json"),
             QStringLiteral("X")},
            "invalid: unknown argument \"--json\"; see \"vantrope --help\"");
        row("folders list takes no operand",
            {QStringLiteral("folders"), QStringLiteral("list"), QStringLiteral("x")},
            "invalid: \"folders list\" takes no arguments");
        row("settings get",
            {QStringLiteral("settings"), QStringLiteral("get"), QStringLiteral("NumberOfDrops")},
            "settings get NumberOfDrops");
        row("settings set a negative number",
            {QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("NumberOfDrops"),
             QStringLiteral("-1")},
            "settings set NumberOfDrops [-1]");
        row("settings set with an empty value",
            {QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("K"), QString()},
            "settings set K []");
        row("settings set without a value",
            {QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("K")},
            "invalid: \"settings\" needs \"get KEY\" or \"set KEY VALUE\"");
        row("settings get with a value",
            {QStringLiteral("settings"), QStringLiteral("get"), QStringLiteral("K"), QStringLiteral("v")},
            "invalid: \"settings\" needs \"get KEY\" or \"set KEY VALUE\"");
        row("an option before the value is refused",
            {QStringLiteral("settings"), QStringLiteral("set"), QStringLiteral("--json"),
             QStringLiteral("K")},
            "invalid: unknown argument \"--json\"; see \"vantrope --help\"");
        row("folders after a file is a file", {QStringLiteral("x"), QStringLiteral("folders")},
            "run /work/dir/x /work/dir/folders");
    }

    void parses()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, expected);
        QCOMPARE(describe(CommandLine::parse(QStringList{QStringLiteral("vantrope")} + arguments,
                                             QStringLiteral("/work/dir"))),
                 expected);
    }

    void printsNamesOnOneLine_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("printed");
        QTest::newRow("plain") << QStringLiteral("/tmp/caf\u00e9 1.txt")
                               << QStringLiteral("/tmp/caf\u00e9 1.txt");
        QTest::newRow("line breaks and tabs")
            << QStringLiteral("a\nb\r\tc") << QStringLiteral("a\\nb\\r\\tc");
        QTest::newRow("a backslash stays readable") << QStringLiteral("a\\n") << QStringLiteral("a\\\\n");
        QTest::newRow("other control characters")
            << QStringLiteral("a\u001bb\u007f\u2028") << QStringLiteral("a\\u001bb\\u007f\\u2028");
    }

    void printsNamesOnOneLine()
    {
        QFETCH(QString, name);
        QFETCH(QString, printed);
        QCOMPARE(CommandLineClient::printable(name), printed);
        const QString listed =
            CommandLineClient::listText({ShelfSummary{QStringLiteral("ID"), name, {}, false, {name}}});
        QCOMPARE(listed.count(QLatin1Char('\n')), 2);
    }

    void fileNamesKeepTheirBytes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("plain");
        QTest::newRow("ASCII") << QByteArray("/tmp/a b.txt") << true;
        QTest::newRow("UTF-8") << QByteArray("/tmp/caf\xc3\xa9\xf0\x9f\x98\x80") << true;
        QTest::newRow("Latin-1") << QByteArray("/tmp/caf\xe9.txt") << false;
        QTest::newRow("a cut sequence at the end") << QByteArray("/tmp/x\xe2\x82") << false;
        QTest::newRow("an overlong slash") << QByteArray("/tmp/\xc0\xaf") << false;
        QTest::newRow("an encoded surrogate") << QByteArray("/tmp/\xed\xb2\x80") << false;
    }

    void fileNamesKeepTheirBytes()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, plain);
        const QString name = LocalFileName::decode(bytes);
        QCOMPARE(LocalFileName::encode(name), bytes);
        QCOMPARE(LocalFileName::isPlain(bytes), plain);
        QCOMPARE(LocalFileName::displayName(name).contains(QChar::ReplacementCharacter), !plain);
        if (plain) {
            QCOMPARE(name, QFile::decodeName(bytes));
        }
    }

    // The real program, with no agent to talk to: every answer is one line and an exit status.
    void answersWithoutAgent_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("display");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("expectedOutput");
        QTest::addColumn<QString>("expectedError");

        QTest::newRow("version") << QStringList{QStringLiteral("--version")} << QString() << 0
                                 << QStringLiteral("vantrope 0.1.0") << QString();
        QTest::newRow("short version") << QStringList{QStringLiteral("-v")} << QString() << 0
                                       << QStringLiteral("vantrope 0.1.0") << QString();
        QTest::newRow("help") << QStringList{QStringLiteral("--help")} << QString() << 0
                              << QStringLiteral("Usage: vantrope") << QString();
        QTest::newRow("help wins over version")
            << QStringList{QStringLiteral("--version"), QStringLiteral("-h")} << QString() << 0
            << QStringLiteral("Usage: vantrope") << QString();
        QTest::newRow("unknown option") << QStringList{QStringLiteral("--frobnicate")} << QString() << 2
                                        << QString() << QStringLiteral("unknown argument \"--frobnicate\"");
        QTest::newRow("add without files") << QStringList{QStringLiteral("add")} << QString() << 2
                                           << QString() << QStringLiteral("\"add\" needs at least one file");
        QTest::newRow("no display at all")
            << QStringList{} << QString() << 1 << QString() << QStringLiteral("no graphical display found");
        QTest::newRow("unreachable X display") << QStringList{} << QStringLiteral(":4242") << 1 << QString()
                                               << QStringLiteral("cannot connect to the X display \":4242\"");
        QTest::newRow("typo of a command") << QStringList{QStringLiteral("lst")} << QStringLiteral(":4242")
                                           << 2 << QString() << QStringLiteral("no such file or command: ");
        QTest::newRow("missing file is found before the bus")
            << QStringList{QStringLiteral("add"), QStringLiteral("/nonexistent/file")} << QString() << 1
            << QString() << QStringLiteral("no such file: /nonexistent/file");
        QTest::newRow("no session bus")
            << QStringList{QStringLiteral("list"), QStringLiteral("--json")} << QString() << 1 << QString()
            << QStringLiteral("cannot reach the D-Bus session bus");
    }

    void answersWithoutAgent()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, display);
        QFETCH(int, exitCode);
        QFETCH(QString, expectedOutput);
        QFETCH(QString, expectedError);

        QTemporaryDir home;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_SESSION_TYPE"}) {
            environment.remove(QString::fromLatin1(name));
        }
        if (!display.isEmpty()) {
            environment.insert(QStringLiteral("DISPLAY"), display);
        }
        // Never the user's own bus, where a real agent may be running.
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           QStringLiteral("unix:path=") + home.filePath(QStringLiteral("no-bus")));
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));

        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(VANTROPE_BINARY), arguments);
        QVERIFY2(process.waitForFinished(10000), "vantrope did not exit by itself");
        const QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
        const QString error = QString::fromLocal8Bit(process.readAllStandardError());

        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), exitCode);
        if (!expectedOutput.isEmpty()) {
            QVERIFY2(output.contains(expectedOutput), qPrintable(output));
        }
        if (expectedError.isEmpty()) {
            QVERIFY2(error.isEmpty(), qPrintable(error));
        } else {
            // One clear line, nothing else.
            QCOMPARE(error.count(QLatin1Char('\n')), 1);
            QVERIFY2(error.startsWith(QStringLiteral("vantrope: ")), qPrintable(error));
            QVERIFY2(error.contains(expectedError), qPrintable(error));
        }
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "TestCommandLine.moc"
