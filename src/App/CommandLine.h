// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QDir>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <variant>

namespace Vantrope {

// What the command line asks for. Parsing touches neither the display nor the file system, so
// `--help` and `--version` work anywhere; file names come back absolute, each named once.
class CommandLine final {
public:
    // Run the agent, or hand over to the one already running. Files become a shelf either way.
    struct RunAgent {
        QStringList files;
    };
    struct ShowHelp {};
    struct ShowVersion {};
    struct Invalid {
        QString message;
    };
    // The commands below need a running agent.
    struct AddFiles {
        QStringList files;
    };
    struct NewShelf {};
    struct OpenRecent {
        // Empty for the most recently closed shelf.
        QString identifier;
    };
    struct CloseAll {};
    struct Quit {};
    struct List {
        bool json = false;
    };
    // The actions on offer for a shelf's items; an empty shelf identifier means the shelf used last.
    struct ListActions {
        QString shelf;
        bool json = false;
    };
    struct RunAction {
        QString action;
        QString shelf;
        // "--set key=value" for a file operation's settings, the values as typed.
        QVariantMap settings;
    };
    // Takes items off a shelf. Each item is its position in the shelf's list (from 1), or the item as
    // `list` prints it; a relative path is made absolute here.
    struct RemoveItems {
        QStringList items;
        QString shelf;
    };
    // Changes the label of a shelf; what is not given stays.
    struct SetLabel {
        QString shelf;
        std::optional<QString> name;
        std::optional<QString> color;
        std::optional<bool> pinned;
    };
    // `folders list|add PATH|remove ID|pause ID|resume ID`: `argument` is the absolute path or the
    // folder's identifier.
    struct Folders {
        enum class Verb { list, add, remove, pause, resume };
        Verb verb = Verb::list;
        QString argument;
        bool json = false;
    };
    // `settings get KEY` / `settings set KEY VALUE`, by the names the preferences file uses.
    struct Settings {
        QString key;
        // Absent for `get`.
        std::optional<QString> value;
    };
    using Request =
        std::variant<RunAgent, ShowHelp, ShowVersion, Invalid, AddFiles, NewShelf, OpenRecent, CloseAll, Quit,
                     List, ListActions, RunAction, RemoveItems, SetLabel, Folders, Settings>;

    // Usage mistakes exit with this, failures at run time with 1.
    static constexpr int usageExitCode = 2;

    static Request parse(const QStringList& arguments, const QString& workingDirectory = QDir::currentPath());
    // Why a file cannot go on a shelf; `message` names the file.
    struct FileProblem {
        enum class Kind { missing, unreadable };
        Kind kind = Kind::missing;
        QString path;
        QString message;
    };
    // The first of `paths` (see LocalFileName) that names nothing on disk or that this process cannot read.
    static std::optional<FileProblem> firstUnusable(const QStringList& paths);
    static QString helpText();
    static QString versionText();

private:
    // What follows the word "folders".
    static Request parseFolders(const QStringList& arguments, const QDir& base);
    // What follows the word "settings".
    static Request parseSettings(const QStringList& arguments);
};

} // namespace Vantrope
