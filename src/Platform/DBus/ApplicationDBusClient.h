// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationRequestHandler.h"
#include "WatchedFolderRequestHandler.h"

#include <chrono>
#include <expected>
#include <optional>
#include <QVariantList>

namespace Vantrope {

// Talks to the running agent over the session bus. Every call gives up after the timeout, so a hung
// agent costs the caller a few seconds and an error, never a hang.
class ApplicationDBusClient final {
public:
    struct Error {
        enum class Kind {
            noBus,
            notRunning,
            noAnswer,
            // The agent answered with a refusal; `message` is its reason.
            refused,
        };
        Kind kind = Kind::noBus;
        QString message;
    };

    static constexpr std::chrono::milliseconds defaultTimeout{5000};

    explicit ApplicationDBusClient(std::chrono::milliseconds timeout = defaultTimeout);

    bool isAgentRunning() const;

    std::expected<void, Error> activate() const;
    // Paths as the file system spells them, so that a name that is no valid UTF-8 arrives intact.
    std::expected<QString, Error> addFiles(const QList<QByteArray>& paths) const;
    std::expected<QString, Error> newShelf() const;
    std::expected<QString, Error> openRecent(const QString& identifier) const;
    std::expected<void, Error> closeAll() const;
    // Returns once the agent has left the bus.
    std::expected<void, Error> quit() const;
    std::expected<QList<ShelfSummary>, Error> shelves() const;
    // An empty shelf identifier asks for the shelf used last.
    std::expected<QList<ShelfActionSummary>, Error> shelfActions(const QString& shelf) const;
    // Waits for the action to end, however long that takes (an upload may take minutes).
    std::expected<QString, Error> runAction(const QString& shelf, const QString& action,
                                            const QVariantMap& settings = {}) const;
    // The removed items as the agent lists them.
    std::expected<QStringList, Error> removeItems(const QString& shelf, const QStringList& items) const;
    // The shelf's identifier.
    std::expected<QString, Error> changeLabel(const QString& shelf,
                                              const ApplicationRequestHandler::LabelChange& change) const;

    // Watched folders.
    std::expected<QList<WatchedFolderSummary>, Error> watchedFolders() const;
    std::expected<WatchedFolderSummary, Error> addWatchedFolder(const QByteArray& path) const;
    // `method` is one of "RemoveFolder", "PauseFolder", "ResumeFolder".
    std::expected<WatchedFolderSummary, Error> changeWatchedFolder(const QString& method,
                                                                   const QString& identifier) const;

    // Settings, by their stored names.
    std::expected<QString, Error> setting(const QString& name) const;
    std::expected<QString, Error> setSetting(const QString& name, const QString& value) const;

private:
    // Without a timeout, the client's own.
    std::expected<QVariantList, Error>
    call(const QString& method, const QVariantList& arguments = {},
         std::optional<std::chrono::milliseconds> timeout = std::nullopt) const;
    std::expected<QString, Error>
    callForString(const QString& method, const QVariantList& arguments,
                  std::optional<std::chrono::milliseconds> timeout = std::nullopt) const;

    std::chrono::milliseconds m_timeout;
};

} // namespace Vantrope
