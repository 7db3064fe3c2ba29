// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "CommandLine.h"
#include "Platform/DBus/ApplicationDBusClient.h"

namespace Vantrope {

// Carries out the commands that act on the running agent and says what to print.
class CommandLineClient final {
public:
    struct Outcome {
        int exitCode = 0;
        QString output;
        // One line, without the "vantrope: " prefix.
        QString error;
    };

    explicit CommandLineClient(const ApplicationDBusClient& client);

    // `request` must be one of the commands that need an agent.
    Outcome run(const CommandLine::Request& request) const;

    static QString listJson(const QList<ShelfSummary>& shelves);
    static QString listText(const QList<ShelfSummary>& shelves);
    static QString actionsJson(const QList<ShelfActionSummary>& actions);
    // One action a line: its identifier, a tab, its title.
    static QString actionsText(const QList<ShelfActionSummary>& actions);
    // `name` on one line: control characters and backslashes escaped as in C.
    static QString printable(const QString& name);
    // One folder a line: its identifier, a tab, its state, a tab, its path.
    static QString foldersText(const QList<WatchedFolderSummary>& folders);
    static QString foldersJson(const QList<WatchedFolderSummary>& folders);

private:
    Outcome runFolders(const CommandLine::Folders& folders) const;

    const ApplicationDBusClient& m_client;
};

} // namespace Vantrope
