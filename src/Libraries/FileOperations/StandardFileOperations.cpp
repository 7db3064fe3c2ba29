// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "StandardFileOperations.h"

#include "BatchRenamePattern.h"
#include "DesktopWallpaper.h"
#include "FileTransfer.h"
#include "Libraries/Core/Localized.h"
#include "Zip.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QStringDecoder>
#include <stop_token>
#include <thread>

namespace Vantrope {

namespace {

void failAll(FileOperationOutcome& outcome, const QStringList& files, const QString& message)
{
    for (const QString& file : files) {
        outcome.failures.append({file, message});
    }
}

// Renames in place, never over an existing item.
std::expected<QString, QString> renameOne(const QString& path, const QString& newName)
{
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) {
        return std::unexpected(Localized("rename.error.missing", "The item no longer exists"));
    }
    if (newName.isEmpty() || newName.contains(QLatin1Char('/')) || newName == QLatin1String(".") ||
        newName == QLatin1String("..")) {
        return std::unexpected(
            Localized("rename.error.invalid", "\"%1\" cannot be a file name").arg(newName));
    }
    const QString target = info.dir().filePath(newName);
    if (newName == info.fileName()) {
        return target;
    }
    // A change of case alone is a rename to an existing name on case-insensitive file systems.
    if ((QFileInfo::exists(target) || QFileInfo(target).isSymLink()) &&
        newName.compare(info.fileName(), Qt::CaseInsensitive) != 0) {
        return std::unexpected(
            Localized("rename.error.exists", "An item named \"%1\" is already there").arg(newName));
    }
    if (!QDir().rename(path, target)) {
        return std::unexpected(Localized("rename.error.failed", "The item could not be renamed"));
    }
    return target;
}

} // namespace

OperationSettings StandardFileOperations::renameSettings()
{
    return {{QStringLiteral("name"),
             Localized("rename.setting.name", "New name"),
             OperationSetting::Type::text,
             QString(),
             0,
             0,
             {}}};
}

FileOperationOutcome StandardFileOperations::rename(const QStringList& files, const QVariantMap& values,
                                                    const QString&, const FileOperationContext&)
{
    FileOperationOutcome outcome;
    if (files.size() != 1) {
        failAll(outcome, files, Localized("rename.error.one", "Rename takes one item"));
        return outcome;
    }
    const auto renamed = renameOne(files.first(), values.value(QStringLiteral("name")).toString().trimmed());
    if (renamed) {
        outcome.outputFiles.append(*renamed);
    } else {
        outcome.failures.append({files.first(), renamed.error()});
    }
    return outcome;
}

OperationSettings StandardFileOperations::batchRenameSettings()
{
    return {
        {QStringLiteral("pattern"),
         Localized("batch-rename.setting.pattern", "Pattern ({name}, {counter}, {date})"),
         OperationSetting::Type::text,
         QStringLiteral("{name} {counter}"),
         0,
         0,
         {}},
        {QStringLiteral("start"),
         Localized("batch-rename.setting.start", "Counter starts at"),
         OperationSetting::Type::integer,
         1,
         0,
         999999,
         {}},
        {QStringLiteral("digits"),
         Localized("batch-rename.setting.digits", "Counter digits"),
         OperationSetting::Type::integer,
         1,
         1,
         9,
         {}},
    };
}

FileOperationOutcome StandardFileOperations::batchRename(const QStringList& files, const QVariantMap& values,
                                                         const QString&, const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    const BatchRenamePattern pattern(values.value(QStringLiteral("pattern")).toString(),
                                     values.value(QStringLiteral("start"), 1).toInt(),
                                     values.value(QStringLiteral("digits"), 1).toInt());
    const auto names = pattern.newNames(files);
    if (!names) {
        failAll(outcome, files, names.error().description());
        return outcome;
    }
    // Two passes through hidden names, so that "b" -> "a" while "a" -> "b" cannot collide halfway.
    QList<std::optional<QString>> staged;
    for (qsizetype index = 0; index < files.size(); ++index) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            break;
        }
        context.reportProgress(0.5 * double(index) / double(files.size()),
                               QFileInfo(files[index]).fileName());
        const QFileInfo info(files[index]);
        const QString hidden = info.dir().filePath(
            FileTransfer::freeName(info.absolutePath(), QStringLiteral(".%1.renaming").arg(info.fileName())));
        if (!info.exists() || !QDir().rename(files[index], hidden)) {
            outcome.failures.append(
                {files[index], Localized("rename.error.failed", "The item could not be renamed")});
            staged.append(std::nullopt);
            continue;
        }
        staged.append(hidden);
    }
    for (qsizetype index = 0; index < staged.size(); ++index) {
        if (!staged[index]) {
            continue;
        }
        context.reportProgress(0.5 + 0.5 * double(index) / double(files.size()), (*names)[index]);
        // A cancel only stops the first pass: every staged item gets a real name again.
        const QString wanted = outcome.cancelled ? QFileInfo(files[index]).fileName() : (*names)[index];
        const QString folder = QFileInfo(*staged[index]).absolutePath();
        const QString name = FileTransfer::freeName(folder, wanted);
        const QString target = QDir(folder).filePath(name);
        if (!QDir().rename(*staged[index], target)) {
            outcome.failures.append(
                {files[index], Localized("rename.error.failed", "The item could not be renamed")});
            continue;
        }
        if (name != wanted) {
            outcome.failures.append(
                {files[index], Localized("batch-rename.error.taken", "\"%1\" was taken; named \"%2\" instead")
                                   .arg(wanted, name)});
        }
        outcome.outputFiles.append(target);
    }
    return outcome;
}

OperationSettings StandardFileOperations::zipSettings()
{
    return {
        {QStringLiteral("name"),
         Localized("zip.setting.name", "Archive name"),
         OperationSetting::Type::text,
         Localized("zip.default-name", "Archive"),
         0,
         0,
         {}},
        {QStringLiteral("compression"),
         Localized("zip.setting.compression", "Compression"),
         OperationSetting::Type::choice,
         QStringLiteral("standard"),
         0,
         0,
         {{QStringLiteral("store"), Localized("zip.compression.store", "None")},
          {QStringLiteral("fastest"), Localized("zip.compression.fastest", "Fastest")},
          {QStringLiteral("standard"), Localized("zip.compression.standard", "Standard")},
          {QStringLiteral("best"), Localized("zip.compression.best", "Smallest")}}},
    };
}

FileOperationOutcome StandardFileOperations::zip(const QStringList& files, const QVariantMap& values,
                                                 const QString& outputDirectory,
                                                 const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    QString name = values.value(QStringLiteral("name")).toString().trimmed();
    name.replace(QLatin1Char('/'), QLatin1Char('-'));
    if (name.endsWith(QLatin1String(".zip"), Qt::CaseInsensitive)) {
        name.chop(4);
    }
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) {
        name = Localized("zip.default-name", "Archive");
    }
    const QString compression = values.value(QStringLiteral("compression")).toString();
    Zip::Options options;
    options.compression = compression == QLatin1String("store")     ? Zip::Compression::store
                          : compression == QLatin1String("fastest") ? Zip::Compression::fastest
                          : compression == QLatin1String("best")    ? Zip::Compression::best
                                                                    : Zip::Compression::standard;
    std::stop_source stop;
    options.progress = [&context, &stop](const Zip::Progress& progress) {
        if (context.isCancelled()) {
            stop.request_stop();
        }
        context.reportProgress(progress.fraction(), {});
    };
    options.stopToken = stop.get_token();
    const auto archive = Zip::quickZipFiles(files, outputDirectory, name, options);
    if (archive) {
        outcome.outputFiles.append(*archive);
    } else if (archive.error().kind == Zip::Error::Kind::cancelled || context.isCancelled()) {
        outcome.cancelled = true;
    } else {
        const QString path = archive.error().path.isEmpty() ? files.value(0) : archive.error().path;
        outcome.failures.append({path, archive.error().description()});
    }
    return outcome;
}

FileOperationOutcome StandardFileOperations::copyTextContent(const QStringList& files, const QVariantMap&,
                                                             const QString&,
                                                             const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    QStringList texts;
    for (const QString& path : files) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            return outcome;
        }
        QFile file(path);
        if (file.size() > textContentLimit) {
            outcome.failures.append(
                {path, Localized("copy-text.error.too-large", "The file is too large to copy as text")});
            continue;
        }
        if (!file.open(QIODevice::ReadOnly)) {
            outcome.failures.append({path, file.errorString()});
            continue;
        }
        const QByteArray bytes = file.readAll();
        QStringDecoder decoder(QStringDecoder::Utf8);
        QString text = decoder.decode(bytes);
        if (decoder.hasError()) {
            text = QString::fromLocal8Bit(bytes);
        }
        texts.append(text);
    }
    outcome.text = texts.join(QLatin1Char('\n'));
    return outcome;
}

FileOperationOutcome StandardFileOperations::copyPath(const QStringList& files, const QVariantMap&,
                                                      const QString&, const FileOperationContext&)
{
    FileOperationOutcome outcome;
    QStringList paths;
    for (const QString& file : files) {
        paths.append(QFileInfo(file).absoluteFilePath());
    }
    outcome.text = paths.join(QLatin1Char('\n'));
    return outcome;
}

OperationSettings StandardFileOperations::transferSettings()
{
    return {
        {QStringLiteral("destination"),
         Localized("transfer.setting.destination", "Destination"),
         OperationSetting::Type::folder,
         QDir::homePath(),
         0,
         0,
         {}},
        {QStringLiteral("clash"),
         Localized("transfer.setting.clash", "When a name is taken"),
         OperationSetting::Type::choice,
         QStringLiteral("ask"),
         0,
         0,
         {{QStringLiteral("ask"), Localized("transfer.clash.ask", "Ask")},
          {QStringLiteral("replace"), Localized("transfer.clash.replace", "Replace")},
          {QStringLiteral("keepBoth"), Localized("transfer.clash.keep-both", "Keep both")},
          {QStringLiteral("skip"), Localized("transfer.clash.skip", "Skip")}}},
    };
}

namespace {

FileOperationOutcome transferFiles(const QStringList& files, const QVariantMap& values,
                                   FileTransfer::Mode mode, const FileOperationContext& context)
{
    const QString destination = QDir::cleanPath(values.value(QStringLiteral("destination")).toString());
    const auto resolution = FileTransfer::clashResolution(values.value(QStringLiteral("clash")).toString());
    // "ask" reaches here only when nobody could be asked: nothing is overwritten then.
    if (!resolution) {
        FileOperationOutcome outcome;
        QStringList free;
        const QStringList clashing = FileTransfer::clashes(files, destination);
        for (const QString& file : files) {
            if (clashing.contains(QFileInfo(file).fileName())) {
                outcome.failures.append(
                    {file, Localized("transfer.error.exists", "An item with this name is already in \"%1\"")
                               .arg(destination)});
            } else {
                free.append(file);
            }
        }
        FileOperationOutcome rest =
            FileTransfer::transfer(free, destination, mode, FileTransfer::ClashResolution::skip, context);
        rest.failures = outcome.failures + rest.failures;
        return rest;
    }
    return FileTransfer::transfer(files, destination, mode, *resolution, context);
}

} // namespace

FileOperationOutcome StandardFileOperations::copyTo(const QStringList& files, const QVariantMap& values,
                                                    const QString&, const FileOperationContext& context)
{
    return transferFiles(files, values, FileTransfer::Mode::copy, context);
}

FileOperationOutcome StandardFileOperations::moveTo(const QStringList& files, const QVariantMap& values,
                                                    const QString&, const FileOperationContext& context)
{
    return transferFiles(files, values, FileTransfer::Mode::move, context);
}

FileOperationOutcome StandardFileOperations::moveToTrash(const QStringList& files, const QVariantMap&,
                                                         const QString&, const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    // The home Trash lives in the data folder, which a fresh account may not have yet.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    for (qsizetype index = 0; index < files.size(); ++index) {
        if (context.isCancelled()) {
            outcome.cancelled = true;
            return outcome;
        }
        context.reportProgress(double(index) / double(files.size()), QFileInfo(files[index]).fileName());
        QString trashed;
        if (!QFile::moveToTrash(files[index], &trashed)) {
            outcome.failures.append(
                {files[index], Localized("trash.error.failed", "Could not move it to the Trash")});
            continue;
        }
        // The Trash is where it went, not a result for the shelf.
    }
    return outcome;
}

FileOperationOutcome StandardFileOperations::setWallpaper(const QStringList& files, const QVariantMap&,
                                                          const QString&, const FileOperationContext&)
{
    FileOperationOutcome outcome;
    if (files.size() != 1) {
        failAll(outcome, files, Localized("wallpaper.error.one", "Choose one picture for the wallpaper"));
        return outcome;
    }
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const auto result = DesktopWallpaper::set(QFileInfo(files.first()).absoluteFilePath(),
                                              DesktopWallpaper::detect(environment), environment);
    if (!result) {
        outcome.failures.append({files.first(), result.error()});
    }
    return outcome;
}

} // namespace Vantrope
