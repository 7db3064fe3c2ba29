// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "OperationSetting.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Vantrope {

// The operations that are not image processing. Each takes values already resolved against its
// settings and runs on a worker thread; a file that fails is reported with its path while the others go
// on. Only rename, batch rename, move and Trash touch the originals, which is what the user asked of them.
class StandardFileOperations final {
public:
    static OperationSettings renameSettings();
    static FileOperationOutcome rename(const QStringList& files, const QVariantMap& values,
                                       const QString& outputDirectory, const FileOperationContext& context);
    static OperationSettings batchRenameSettings();
    static FileOperationOutcome batchRename(const QStringList& files, const QVariantMap& values,
                                            const QString& outputDirectory,
                                            const FileOperationContext& context);
    static OperationSettings zipSettings();
    static FileOperationOutcome zip(const QStringList& files, const QVariantMap& values,
                                    const QString& outputDirectory, const FileOperationContext& context);
    static FileOperationOutcome copyTextContent(const QStringList& files, const QVariantMap& values,
                                                const QString& outputDirectory,
                                                const FileOperationContext& context);
    static FileOperationOutcome copyPath(const QStringList& files, const QVariantMap& values,
                                         const QString& outputDirectory, const FileOperationContext& context);
    // Copy to and move to share their settings: the destination and what to do on a name clash.
    static OperationSettings transferSettings();
    static FileOperationOutcome copyTo(const QStringList& files, const QVariantMap& values,
                                       const QString& outputDirectory, const FileOperationContext& context);
    static FileOperationOutcome moveTo(const QStringList& files, const QVariantMap& values,
                                       const QString& outputDirectory, const FileOperationContext& context);
    static FileOperationOutcome moveToTrash(const QStringList& files, const QVariantMap& values,
                                            const QString& outputDirectory,
                                            const FileOperationContext& context);
    static FileOperationOutcome setWallpaper(const QStringList& files, const QVariantMap& values,
                                             const QString& outputDirectory,
                                             const FileOperationContext& context);

    // Text files larger than this are not copied whole onto the clipboard.
    static constexpr qint64 textContentLimit = 16 * 1024 * 1024;
};

} // namespace Vantrope
