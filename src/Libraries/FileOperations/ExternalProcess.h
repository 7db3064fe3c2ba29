// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "OperationSetting.h"

#include <chrono>
#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace Vantrope {

// Runs another program to its end on the calling thread (a worker), with its arguments passed as they
// are (no shell), a time limit after which it is killed, and the operation's cancel checked while it runs.
class ExternalProcess final {
public:
    struct Result {
        enum class End { exited, failedToStart, crashed, timedOut, cancelled };
        End end = End::exited;
        int exitCode = 0;
        QByteArray standardOutput;
        QByteArray standardError;
        // The last non-empty line of standard error, or the reason it could not start.
        QString lastErrorLine() const;
    };

    static Result run(const QString& program, const QStringList& arguments, const QString& workingDirectory,
                      const QProcessEnvironment& environment, std::chrono::milliseconds timeLimit,
                      const FileOperationContext& context);
};

} // namespace Vantrope
