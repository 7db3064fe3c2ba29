// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "CommandLine.h"

#include "LocalFileName.h"
#include "Version.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace Vantrope {

namespace {

bool isOption(const QString& argument)
{
    return argument.size() > 1 && argument.startsWith(QLatin1Char('-'));
}

CommandLine::Invalid unknownArgument(const QString& argument)
{
    return {QStringLiteral("unknown argument \"%1\"; see \"vantrope --help\"").arg(argument)};
}

} // namespace

CommandLine::Request CommandLine::parse(const QStringList& arguments, const QString& workingDirectory)
{
    const QStringList rest = arguments.mid(1);
    // --help wins wherever it stands, then --version, before anything else is judged.
    bool version = false;
    for (const QString& argument : rest) {
        if (argument == QStringLiteral("--")) {
            break;
        }
        if (argument == QStringLiteral("--help") || argument == QStringLiteral("-h")) {
            return ShowHelp{};
        }
        version = version || argument == QStringLiteral("--version") || argument == QStringLiteral("-v");
    }
    if (version) {
        return ShowVersion{};
    }

    const QDir base(workingDirectory);
    QString command;
    QStringList operands;
    bool optionsEnded = false;
    bool json = false;
    std::optional<QString> shelf;
    QVariantMap settings;
    SetLabel label;
    for (qsizetype index = 0; index < rest.size(); ++index) {
        const QString& argument = rest[index];
        if (command.isEmpty() && operands.isEmpty() && !optionsEnded &&
            argument == QStringLiteral("folders")) {
            return parseFolders(rest.mid(index + 1), base);
        }
        if (command.isEmpty() && operands.isEmpty() && !optionsEnded &&
            argument == QStringLiteral("settings")) {
            return parseSettings(rest.mid(index + 1));
        }
        const bool shelfCommand = command == QStringLiteral("actions") || command == QStringLiteral("run") ||
                                  command == QStringLiteral("remove") || command == QStringLiteral("label");
        const bool labelCommand = command == QStringLiteral("label");
        // "--name N" or "--name=N"; none when `argument` is not `option`.
        const auto valueOf = [&](const QString& option) -> std::optional<std::optional<QString>> {
            if (argument == option) {
                if (index + 1 >= rest.size()) {
                    return std::optional<QString>();
                }
                return std::optional<QString>(rest[++index]);
            }
            if (argument.startsWith(option + QLatin1Char('='))) {
                return std::optional<QString>(argument.mid(option.size() + 1));
            }
            return std::nullopt;
        };
        if (!optionsEnded && argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (!optionsEnded && isOption(argument)) {
            std::optional<std::optional<QString>> value;
            if ((command == QStringLiteral("list") || command == QStringLiteral("actions")) &&
                argument == QStringLiteral("--json")) {
                json = true;
            } else if (shelfCommand && (value = valueOf(QStringLiteral("--shelf")))) {
                if (!*value || (*value)->isEmpty()) {
                    return Invalid{QStringLiteral("\"--shelf\" needs a shelf identifier")};
                }
                shelf = **value;
            } else if (command == QStringLiteral("run") && (value = valueOf(QStringLiteral("--set")))) {
                const qsizetype equals = *value ? (*value)->indexOf(QLatin1Char('=')) : -1;
                if (equals <= 0) {
                    return Invalid{
                        QStringLiteral("\"--set\" needs a setting as key=value, such as width=1600")};
                }
                settings.insert((*value)->left(equals), (*value)->mid(equals + 1));
            } else if (labelCommand && (value = valueOf(QStringLiteral("--name")))) {
                if (!*value) {
                    return Invalid{QStringLiteral("\"--name\" needs a name (\"\" removes the name)")};
                }
                label.name = **value;
            } else if (labelCommand && (value = valueOf(QStringLiteral("--color")))) {
                if (!*value || (*value)->isEmpty()) {
                    return Invalid{QStringLiteral("\"--color\" needs a colour, such as \"blue\"")};
                }
                label.color = **value;
            } else if (labelCommand &&
                       (argument == QStringLiteral("--pin") || argument == QStringLiteral("--unpin"))) {
                const bool pin = argument == QStringLiteral("--pin");
                if (label.pinned && *label.pinned != pin) {
                    return Invalid{QStringLiteral("\"--pin\" and \"--unpin\" exclude each other")};
                }
                label.pinned = pin;
            } else {
                return unknownArgument(argument);
            }
        } else if (command.isEmpty() && operands.isEmpty() && !optionsEnded &&
                   QStringList{QStringLiteral("add"), QStringLiteral("new"), QStringLiteral("open-recent"),
                               QStringLiteral("close-all"), QStringLiteral("quit"), QStringLiteral("list"),
                               QStringLiteral("actions"), QStringLiteral("run"), QStringLiteral("remove"),
                               QStringLiteral("label")}
                       .contains(argument)) {
            command = argument;
        } else {
            operands.append(argument);
        }
    }

    const auto absolute = [&base](const QStringList& names) {
        QStringList paths;
        for (const QString& name : names) {
            paths.append(QDir::cleanPath(base.absoluteFilePath(name)));
        }
        // A file is on a shelf once, however often it is named.
        paths.removeDuplicates();
        return paths;
    };
    const auto noOperands = [&](Request request) -> Request {
        if (!operands.isEmpty()) {
            return Invalid{QStringLiteral("\"%1\" takes no arguments").arg(command)};
        }
        return request;
    };

    if (command.isEmpty()) {
        return RunAgent{absolute(operands)};
    }
    if (command == QStringLiteral("add")) {
        if (operands.isEmpty()) {
            return Invalid{QStringLiteral("\"add\" needs at least one file")};
        }
        return AddFiles{absolute(operands)};
    }
    if (command == QStringLiteral("open-recent")) {
        if (operands.size() > 1) {
            return Invalid{QStringLiteral("\"open-recent\" takes at most one shelf identifier")};
        }
        return OpenRecent{operands.value(0)};
    }
    if (command == QStringLiteral("new")) {
        return noOperands(NewShelf{});
    }
    if (command == QStringLiteral("close-all")) {
        return noOperands(CloseAll{});
    }
    if (command == QStringLiteral("quit")) {
        return noOperands(Quit{});
    }
    if (command == QStringLiteral("actions")) {
        return noOperands(ListActions{shelf.value_or(QString()), json});
    }
    if (command == QStringLiteral("run")) {
        if (operands.size() != 1 || operands.first().isEmpty()) {
            return Invalid{
                QStringLiteral("\"run\" needs one action identifier; \"vantrope actions\" lists them")};
        }
        return RunAction{operands.first(), shelf.value_or(QString()), settings};
    }
    if (command == QStringLiteral("remove")) {
        if (operands.isEmpty()) {
            return Invalid{QStringLiteral(
                "\"remove\" needs at least one item: its number or its path as \"vantrope list\" shows it")};
        }
        QStringList items;
        for (const QString& operand : std::as_const(operands)) {
            bool number = false;
            operand.toLongLong(&number);
            // Numbers and addresses stand as they are; a path is the file's, wherever the caller stands.
            if (number || operand.isEmpty() || operand.contains(QStringLiteral("://"))) {
                items.append(operand);
            } else {
                items.append(QDir::cleanPath(base.absoluteFilePath(operand)));
            }
        }
        items.removeDuplicates();
        return RemoveItems{items, shelf.value_or(QString())};
    }
    if (command == QStringLiteral("label")) {
        if (!label.name && !label.color && !label.pinned) {
            return Invalid{
                QStringLiteral("\"label\" needs at least one of --name, --color, --pin and --unpin")};
        }
        label.shelf = shelf.value_or(QString());
        return noOperands(label);
    }
    return noOperands(List{json});
}

CommandLine::Request CommandLine::parseFolders(const QStringList& arguments, const QDir& base)
{
    using Verb = Folders::Verb;
    static const QList<std::pair<QString, Verb>> verbs{
        {QStringLiteral("list"), Verb::list},     {QStringLiteral("add"), Verb::add},
        {QStringLiteral("remove"), Verb::remove}, {QStringLiteral("pause"), Verb::pause},
        {QStringLiteral("resume"), Verb::resume},
    };
    const QString usage =
        QStringLiteral("\"folders\" needs one of: list, add PATH, remove ID, pause ID, resume ID");
    Folders folders;
    std::optional<QString> verbName;
    QStringList operands;
    bool optionsEnded = false;
    for (const QString& argument : arguments) {
        if (!optionsEnded && argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (!optionsEnded && isOption(argument)) {
            if (verbName == QStringLiteral("list") && argument == QStringLiteral("--json")) {
                folders.json = true;
            } else {
                return unknownArgument(argument);
            }
        } else if (!verbName) {
            const auto found = std::find_if(verbs.begin(), verbs.end(),
                                            [&argument](const auto& verb) { return verb.first == argument; });
            if (found == verbs.end()) {
                return Invalid{QStringLiteral("unknown folders command \"%1\"; %2").arg(argument, usage)};
            }
            verbName = found->first;
            folders.verb = found->second;
        } else {
            operands.append(argument);
        }
    }
    if (!verbName) {
        // Plain "folders" lists them.
        return folders;
    }
    if (folders.verb == Verb::list) {
        if (!operands.isEmpty()) {
            return Invalid{QStringLiteral("\"folders list\" takes no arguments")};
        }
        return folders;
    }
    if (operands.size() != 1 || operands.first().isEmpty()) {
        return Invalid{folders.verb == Verb::add
                           ? QStringLiteral("\"folders add\" needs one folder")
                           : QStringLiteral("\"folders %1\" needs one folder identifier; \"vantrope folders "
                                            "list\" shows them")
                                 .arg(*verbName)};
    }
    folders.argument = folders.verb == Verb::add ? QDir::cleanPath(base.absoluteFilePath(operands.first()))
                                                 : operands.first();
    return folders;
}

CommandLine::Request CommandLine::parseSettings(const QStringList& arguments)
{
    QStringList operands;
    bool optionsEnded = false;
    for (const QString& argument : arguments) {
        if (!optionsEnded && argument == QStringLiteral("--")) {
            optionsEnded = true;
        } else if (!optionsEnded && isOption(argument) && operands.size() < 3) {
            // A value may begin with a dash ("-1"); only what stands before it is taken for an option.
            if (operands.size() == 2 && operands.first() == QStringLiteral("set")) {
                operands.append(argument);
                continue;
            }
            return unknownArgument(argument);
        } else {
            operands.append(argument);
        }
    }
    const QString verb = operands.value(0);
    if (verb == QStringLiteral("get") && operands.size() == 2) {
        return Settings{operands[1], std::nullopt};
    }
    if (verb == QStringLiteral("set") && operands.size() == 3) {
        return Settings{operands[1], operands[2]};
    }
    return Invalid{QStringLiteral("\"settings\" needs \"get KEY\" or \"set KEY VALUE\"")};
}

std::optional<CommandLine::FileProblem> CommandLine::firstUnusable(const QStringList& paths)
{
    for (const QString& path : paths) {
        const QByteArray bytes = LocalFileName::encode(path);
        const QString shown = LocalFileName::displayName(path);
        if (::access(bytes.constData(), F_OK) != 0) {
            if (errno == ENOENT || errno == ENOTDIR) {
                return FileProblem{FileProblem::Kind::missing, path,
                                   QStringLiteral("no such file: %1").arg(shown)};
            }
            return FileProblem{FileProblem::Kind::unreadable, path,
                               QStringLiteral("cannot read %1: %2")
                                   .arg(shown, QString::fromLocal8Bit(std::strerror(errno)))};
        }
        // Accepted now and found unreadable later, it would vanish from the shelf as if deleted.
        if (::access(bytes.constData(), R_OK) != 0) {
            return FileProblem{FileProblem::Kind::unreadable, path,
                               QStringLiteral("cannot read %1: %2")
                                   .arg(shown, QString::fromLocal8Bit(std::strerror(errno)))};
        }
    }
    return std::nullopt;
}

QString CommandLine::helpText()
{
    return QStringLiteral(
        "Usage: vantrope [FILE...]\n"
        "       vantrope COMMAND [ARGUMENTS]\n"
        "A floating shelf for the things you drag: shake the pointer during a drag, set things down on the\n"
        "shelf, and drag them out again wherever you need them.\n"
        "\n"
        "Started without a command, Vantrope runs in the background with an item in the system tray; given\n"
        "files, it also puts them on a new shelf. When it is running already, the running one does the work\n"
        "and this call returns at once.\n"
        "\n"
        "Commands (they need Vantrope to be running):\n"
        "  add FILE...          put the files on a new shelf and print its identifier\n"
        "  new                  open an empty shelf and print its identifier\n"
        "  open-recent [ID]     open the recent shelf ID, or the one closed most recently\n"
        "  close-all            close every shelf; closed shelves stay in the recent list\n"
        "  list [--json]        show the open shelves with their identifiers, labels and items\n"
        "  actions [--shelf ID] [--json]\n"
        "                       list the actions on offer for a shelf's items (default: the shelf used "
        "last)\n"
        "  run ACTION [--shelf ID] [--set KEY=VALUE]...\n"
        "                       run one of those actions and print its result (a link, a message, or\n"
        "                       the files a file operation made); --set gives a file operation's\n"
        "                       settings, which \"actions --json\" lists as \"options\"\n"
        "  remove ITEM... [--shelf ID]\n"
        "                       take items off a shelf (not off the disk; default: the shelf used last);\n"
        "                       ITEM is the item's number in the shelf's list, from 1, or its path as\n"
        "                       \"list\" shows it. One unknown item and nothing is removed\n"
        "  label [--shelf ID] [--name NAME] [--color COLOR] [--pin|--unpin]\n"
        "                       rename, recolour, pin or unpin a shelf (default: the shelf used last);\n"
        "                       --name \"\" removes the name.\n"
        "                       Colours: monochrome orange yellow green turquoise blue pink coral khaki\n"
        "                       spring\n"
        "  folders [list [--json]]\n"
        "                       show the watched folders with their identifiers and states\n"
        "  folders add FOLDER   watch a folder: new files in it open a shelf\n"
        "  folders remove|pause|resume ID\n"
        "                       stop watching a folder, or pause and resume it\n"
        "  settings get KEY     print a setting, by its name in the preferences file\n"
        "  settings set KEY VALUE\n"
        "                       change a setting; lists are given as JSON, such as [\"a\", \"b\"]\n"
        "  quit                 end Vantrope\n"
        "\n"
        "Options:\n"
        "  -h, --help     show this help and exit\n"
        "  -v, --version  show the version and exit\n"
        "\n"
        "Exit status: 0 on success, 1 when the request failed, 2 for a mistake on the command line.\n");
}

QString CommandLine::versionText()
{
    return QStringLiteral("vantrope " VANTROPE_VERSION);
}

} // namespace Vantrope
