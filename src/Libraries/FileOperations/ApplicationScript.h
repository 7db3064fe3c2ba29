// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "OperationSetting.h"

#include <chrono>
#include <QString>
#include <QStringList>
#include <QUuid>

namespace Vantrope {

// An executable the user put into the scripts folder. It runs with the items' paths as its arguments;
// the lines of its standard output that name existing files (in the home folder or the run's output
// folder) become the shelf's new content, and a non-zero exit shows the last line of its standard error.
struct ApplicationScript {
    static constexpr std::chrono::seconds defaultTimeLimit{120};

    QUuid identifier; // stable for a file name
    QString name;
    QString path;

    static ApplicationScript forPath(const QString& path);
    // "applicationScript_" and the identifier.
    QString searchIdentifier() const;

    // Runs the script to its end on the calling thread. `allowedFolders` bound the files it may hand back.
    FileOperationOutcome run(const QStringList& files, const QString& outputDirectory,
                             const QStringList& allowedFolders, std::chrono::milliseconds timeLimit,
                             const FileOperationContext& context) const;
    // The lines of `output` that name existing files inside one of `allowedFolders`, each once.
    static QStringList filesNamedIn(const QByteArray& output, const QString& workingDirectory,
                                    const QStringList& allowedFolders);

    bool operator==(const ApplicationScript&) const = default;
};

} // namespace Vantrope
