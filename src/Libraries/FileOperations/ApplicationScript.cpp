// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationScript.h"

#include "ExternalProcess.h"
#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"

#include <QDir>
#include <QFileInfo>

namespace Vantrope {

namespace {

const QUuid scriptNamespace = QUuid::fromString(QStringLiteral("{5b0c6f2e-6a43-4c8e-9d0e-3f1a2b7c9d41}"));

} // namespace

ApplicationScript ApplicationScript::forPath(const QString& path)
{
    const QFileInfo info(path);
    return {QUuid::createUuidV5(scriptNamespace, info.fileName()), info.completeBaseName(),
            info.absoluteFilePath()};
}

QString ApplicationScript::searchIdentifier() const
{
    return QStringLiteral("applicationScript_") + identifier.toString(QUuid::WithoutBraces);
}

QStringList ApplicationScript::filesNamedIn(const QByteArray& output, const QString& workingDirectory,
                                            const QStringList& allowedFolders)
{
    QStringList roots;
    for (const QString& folder : allowedFolders) {
        const QString canonical = QFileInfo(folder).canonicalFilePath();
        if (!canonical.isEmpty()) {
            roots.append(canonical == QLatin1String("/") ? canonical : canonical + QLatin1Char('/'));
        }
    }
    QStringList files;
    for (const QString& rawLine :
         QString::fromLocal8Bit(output).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        QString line = rawLine;
        if (line.endsWith(QLatin1Char('\r'))) {
            line.chop(1);
        }
        if (line.trimmed().isEmpty()) {
            continue;
        }
        const QFileInfo info(QDir(workingDirectory).absoluteFilePath(line));
        // Links are followed before the check, so none can lead outside.
        const QString canonical = info.canonicalFilePath();
        if (canonical.isEmpty() || files.contains(canonical)) {
            continue;
        }
        const bool inside = std::any_of(roots.cbegin(), roots.cend(), [&canonical](const QString& root) {
            return canonical.startsWith(root);
        });
        if (!inside) {
            qCInfo(lcFileOperations).noquote() << "A script named a file outside its folders; ignored";
            continue;
        }
        files.append(canonical);
    }
    return files;
}

FileOperationOutcome ApplicationScript::run(const QStringList& files, const QString& outputDirectory,
                                            const QStringList& allowedFolders,
                                            std::chrono::milliseconds timeLimit,
                                            const FileOperationContext& context) const
{
    FileOperationOutcome outcome;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VANTROPE_OUTPUT_DIRECTORY"), outputDirectory);
    context.reportProgress(0, name);
    const ExternalProcess::Result result =
        ExternalProcess::run(path, files, outputDirectory, environment, timeLimit, context);
    using End = ExternalProcess::Result::End;
    const QString first = files.value(0, path);
    switch (result.end) {
    case End::cancelled:
        outcome.cancelled = true;
        return outcome;
    case End::timedOut:
        outcome.failures.append(
            {first, Localized("script.error.timeout", "\"%1\" took longer than %2 seconds and was stopped")
                        .arg(name)
                        .arg(std::chrono::duration_cast<std::chrono::seconds>(timeLimit).count())});
        return outcome;
    case End::failedToStart:
        outcome.failures.append({first, Localized("script.error.start", "\"%1\" could not be started: %2")
                                            .arg(name, result.lastErrorLine())});
        return outcome;
    case End::crashed:
        outcome.failures.append({first, Localized("script.error.crashed", "\"%1\" crashed").arg(name)});
        return outcome;
    case End::exited:
        break;
    }
    if (result.exitCode != 0) {
        const QString line = result.lastErrorLine();
        outcome.failures.append(
            {first, line.isEmpty() ? Localized("script.error.exit", "\"%1\" failed with exit code %2")
                                         .arg(name)
                                         .arg(result.exitCode)
                                   : line});
        return outcome;
    }
    outcome.outputFiles = filesNamedIn(result.standardOutput, outputDirectory, allowedFolders);
    context.reportProgress(1, name);
    return outcome;
}

} // namespace Vantrope
