// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ExternalProcess.h"

#include "FileOperationsLogging.h"

#include <QElapsedTimer>
#include <QProcess>
#include <signal.h>
#include <unistd.h>

namespace Vantrope {

QString ExternalProcess::Result::lastErrorLine() const
{
    const QStringList lines =
        QString::fromLocal8Bit(standardError).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        if (!line->trimmed().isEmpty()) {
            return line->trimmed();
        }
    }
    return {};
}

ExternalProcess::Result ExternalProcess::run(const QString& program, const QStringList& arguments,
                                             const QString& workingDirectory,
                                             const QProcessEnvironment& environment,
                                             std::chrono::milliseconds timeLimit,
                                             const FileOperationContext& context)
{
    Result result;
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(workingDirectory);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    // Its own process group, so that what it starts goes with it when it is killed.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start();
    if (!process.waitForStarted(10000)) {
        result.end = Result::End::failedToStart;
        result.standardError = process.errorString().toLocal8Bit();
        return result;
    }
    const qint64 pid = process.processId();
    QElapsedTimer timer;
    timer.start();
    while (!process.waitForFinished(50)) {
        if (process.state() == QProcess::NotRunning) {
            break;
        }
        result.standardOutput += process.readAllStandardOutput();
        result.standardError += process.readAllStandardError();
        const bool cancelled = context.isCancelled();
        if (cancelled || timer.elapsed() >= timeLimit.count()) {
            result.end = cancelled ? Result::End::cancelled : Result::End::timedOut;
            qCInfo(lcFileOperations).noquote() << (cancelled ? "Stopping" : "Killing") << program
                                               << (cancelled ? "on cancel" : "at its time limit");
            ::kill(-pid_t(pid), SIGTERM);
            if (!process.waitForFinished(2000)) {
                ::kill(-pid_t(pid), SIGKILL);
                process.waitForFinished(2000);
            }
            result.standardOutput += process.readAllStandardOutput();
            result.standardError += process.readAllStandardError();
            return result;
        }
    }
    result.standardOutput += process.readAllStandardOutput();
    result.standardError += process.readAllStandardError();
    if (process.exitStatus() == QProcess::CrashExit) {
        result.end = Result::End::crashed;
    }
    result.exitCode = process.exitCode();
    return result;
}

} // namespace Vantrope
