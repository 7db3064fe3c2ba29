// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileTransfer.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUuid>

namespace Vantrope {

namespace {

QString failureText(const QString& what, const QString& reason)
{
    return reason.isEmpty() ? what : what + QStringLiteral(": ") + reason;
}

// Copies one file or a folder with everything in it to `target`, which must not exist.
std::expected<void, QString> copyTree(const QString& source, const QString& target,
                                      const FileOperationContext& context)
{
    const QFileInfo info(source);
    if (info.isSymLink()) {
        if (!QFile::link(info.symLinkTarget(), target)) {
            return std::unexpected(Localized("file-transfer.error.link", "The link could not be copied"));
        }
        return {};
    }
    if (!info.isDir()) {
        QFile file(source);
        if (!file.copy(target)) {
            return std::unexpected(file.errorString());
        }
        return {};
    }
    if (!QDir().mkpath(target)) {
        return std::unexpected(Localized("file-transfer.error.mkdir", "The folder could not be made"));
    }
    QDirIterator entries(source, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        if (context.isCancelled()) {
            return std::unexpected(QString());
        }
        const QString entry = entries.next();
        if (auto copied = copyTree(entry, target + QLatin1Char('/') + entries.fileName(), context); !copied) {
            return copied;
        }
    }
    return {};
}

void removeTree(const QString& path)
{
    const QFileInfo info(path);
    if (info.isDir() && !info.isSymLink()) {
        QDir(path).removeRecursively();
    } else {
        QFile::remove(path);
    }
}

} // namespace

std::optional<FileTransfer::ClashResolution> FileTransfer::clashResolution(const QString& value)
{
    if (value == QLatin1String("replace")) {
        return ClashResolution::replace;
    }
    if (value == QLatin1String("keepBoth")) {
        return ClashResolution::keepBoth;
    }
    if (value == QLatin1String("skip")) {
        return ClashResolution::skip;
    }
    return std::nullopt;
}

QStringList FileTransfer::clashes(const QStringList& paths, const QString& destination)
{
    QStringList names;
    for (const QString& path : paths) {
        const QString name = QFileInfo(path).fileName();
        const QFileInfo target(QDir(destination).filePath(name));
        if ((target.exists() || target.isSymLink()) &&
            target.absoluteFilePath() != QFileInfo(path).absoluteFilePath()) {
            names.append(name);
        }
    }
    return names;
}

QString FileTransfer::freeName(const QString& folder, const QString& fileName)
{
    const QDir directory(folder);
    if (!QFileInfo::exists(directory.filePath(fileName)) &&
        !QFileInfo(directory.filePath(fileName)).isSymLink()) {
        return fileName;
    }
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    const QString base = dot > 0 ? fileName.left(dot) : fileName;
    const QString extension = dot > 0 ? fileName.mid(dot) : QString();
    for (int number = 2;; ++number) {
        const QString candidate = QStringLiteral("%1 %2%3").arg(base).arg(number).arg(extension);
        if (!QFileInfo::exists(directory.filePath(candidate)) &&
            !QFileInfo(directory.filePath(candidate)).isSymLink()) {
            return candidate;
        }
    }
}

FileOperationOutcome FileTransfer::transfer(const QStringList& paths, const QString& destination, Mode mode,
                                            ClashResolution resolution, const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    const QFileInfo folder(destination);
    if (!folder.isDir()) {
        for (const QString& path : paths) {
            outcome.failures.append({path, Localized("file-transfer.error.no-destination",
                                                     "The destination folder \"%1\" does not exist")
                                               .arg(destination)});
        }
        return outcome;
    }
    const QDir directory(folder.absoluteFilePath());
    for (qsizetype index = 0; index < paths.size(); ++index) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            return outcome;
        }
        const QString& source = paths[index];
        const QFileInfo sourceInfo(source);
        context.reportProgress(double(index) / double(paths.size()), sourceInfo.fileName());
        if (!sourceInfo.exists() && !sourceInfo.isSymLink()) {
            outcome.failures.append(
                {source, Localized("file-transfer.error.missing", "The item no longer exists")});
            continue;
        }
        if (sourceInfo.isDir() &&
            QString(directory.absolutePath() + QLatin1Char('/'))
                .startsWith(QString(sourceInfo.absoluteFilePath() + QLatin1Char('/')))) {
            outcome.failures.append(
                {source, Localized("file-transfer.error.into-itself", "A folder cannot go into itself")});
            continue;
        }
        QString name = sourceInfo.fileName();
        const QString wanted = directory.filePath(name);
        if (QFileInfo(wanted).absoluteFilePath() == sourceInfo.absoluteFilePath()) {
            // Already there: a move has nothing to do, a copy keeps both.
            if (mode == Mode::move) {
                outcome.outputFiles.append(wanted);
                continue;
            }
            name = freeName(directory.absolutePath(), name);
        }
        bool replacing = false;
        if (QFileInfo::exists(directory.filePath(name)) || QFileInfo(directory.filePath(name)).isSymLink()) {
            switch (resolution) {
            case ClashResolution::skip:
                continue;
            case ClashResolution::keepBoth:
                name = freeName(directory.absolutePath(), name);
                break;
            case ClashResolution::replace:
                replacing = true;
                break;
            }
        }
        const QString target = directory.filePath(name);
        // Same file system: a rename moves it at once and whole.
        if (mode == Mode::move && !replacing && QDir().rename(source, target)) {
            outcome.outputFiles.append(target);
            continue;
        }
        const QString partial = directory.filePath(
            QStringLiteral(".%1.%2.part").arg(name, QUuid::createUuid().toString(QUuid::Id128).left(8)));
        if (auto copied = copyTree(source, partial, context); !copied) {
            removeTree(partial);
            if (context.isCancelled()) {
                outcome.cancelled = true;
                return outcome;
            }
            outcome.failures.append(
                {source,
                 failureText(Localized("file-transfer.error.copy", "Could not copy"), copied.error())});
            continue;
        }
        if (replacing) {
            QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
        }
        if (replacing && !QFile::moveToTrash(target)) {
            removeTree(partial);
            outcome.failures.append({source, Localized("file-transfer.error.replace",
                                                       "\"%1\" could not be moved to the Trash to make room")
                                                 .arg(name)});
            continue;
        }
        if (!QDir().rename(partial, target)) {
            removeTree(partial);
            outcome.failures.append(
                {source, Localized("file-transfer.error.rename", "Could not name the copy")});
            continue;
        }
        if (mode == Mode::move) {
            // The copy is complete under its name: only now does the original go.
            removeTree(source);
            if (QFileInfo::exists(source)) {
                qCWarning(lcFileOperations) << "Moved item could not be removed from its old place";
            }
        }
        outcome.outputFiles.append(target);
    }
    context.reportProgress(1.0, {});
    return outcome;
}

} // namespace Vantrope
