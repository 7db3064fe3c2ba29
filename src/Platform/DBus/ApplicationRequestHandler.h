// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace Vantrope {

class SettingsRequestHandler;
class WatchedFolderRequestHandler;

// One open shelf as other programs see it.
struct ShelfSummary {
    QString identifier;
    std::optional<QString> name;
    QString color;
    bool pinned = false;
    // Local paths; the address for an item that is no local file.
    QStringList items;
};

// One action on offer for a shelf's items.
struct ShelfActionSummary {
    QString identifier;
    QString title;
    // A file operation's settings, each a map: "key", "title", "type" (integer, choice, boolean, text,
    // folder), "default", and "minimum"/"maximum" or "choices" where they apply.
    QVariantList options;
};

// What a running Vantrope does for other programs over its D-Bus interface and for its own command
// line: adding files to a shelf, open-file requests, reopen and the automation intents.
class ApplicationRequestHandler {
public:
    struct Error {
        enum class Kind {
            missingFile,
            unreadableFile,
            unknownShelf,
            noRecentShelf,
            invalidArguments,
            // No shelf is open to act on.
            noShelf,
            // The action was refused or failed; `message` says why.
            actionFailed,
            // No item of the shelf answers to what was named.
            unknownItem,
        };
        Kind kind = Kind::invalidArguments;
        QString message;
    };

    virtual ~ApplicationRequestHandler() = default;

    // Someone launched the program again.
    virtual void activate() = 0;
    // A new shelf with the files, given as the file system spells their absolute paths; its identifier.
    virtual std::expected<QString, Error> addFiles(const QList<QByteArray>& paths) = 0;
    virtual QString newShelf() = 0;
    // The shelf with this identifier, or the most recently closed one for an empty identifier.
    virtual std::expected<QString, Error> openRecent(const QString& identifier) = 0;
    // `done` runs once the closed shelves are gone and saved to the recent list.
    virtual void closeAll(std::function<void()> done) = 0;
    virtual void quit() = 0;
    virtual QList<ShelfSummary> shelves() const = 0;
    // The actions on offer for the items of the shelf with this identifier, or of the shelf used last for
    // an empty one. `done` runs once the items are prepared.
    virtual void
    shelfActions(const QString& shelf,
                 std::function<void(const std::expected<QList<ShelfActionSummary>, Error>&)> done) = 0;
    // Runs one of them; `done` gets what it left (a link or a message, maybe empty) once it has ended.
    // `settings` are a file operation's values as typed (key to text); other actions take none.
    virtual void runAction(const QString& shelf, const QString& action, const QVariantMap& settings,
                           std::function<void(const std::expected<QString, Error>&)> done) = 0;

    // Removal and labels for scripts.
    // Takes items off a shelf (never off the disk). Each item is its position in the shelf's `items` of
    // `shelves()`, counted from 1, or the item as listed there. All or nothing: when one names no item,
    // none is removed. Returns the removed items as listed.
    virtual std::expected<QStringList, Error> removeItems(const QString& shelf, const QStringList& items) = 0;
    // What a script changes of a shelf's label; what is absent stays. An empty name removes the name.
    struct LabelChange {
        std::optional<QString> name;
        // A colour's identifier, "blue" or "monochrome".
        std::optional<QString> color;
        std::optional<bool> pinned;
    };
    // Returns the shelf's identifier.
    virtual std::expected<QString, Error> changeLabel(const QString& shelf, const LabelChange& change) = 0;
    // End of removal and labels for scripts.
    // The watched folders; none where they are not offered.
    virtual WatchedFolderRequestHandler* watchedFolders() { return nullptr; }
    // The preferences; none where they are not offered.
    virtual SettingsRequestHandler* settings() { return nullptr; }
};

} // namespace Vantrope
