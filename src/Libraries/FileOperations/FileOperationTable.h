// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "FileOperationType.h"
#include "OperationSetting.h"

#include <functional>
#include <QList>

namespace Vantrope {

// What each built-in operation asks for, what runs it and what becomes of its results. A type without
// a row is not offered (its library is missing from this build).
struct FileOperationEntry {
    using Run = std::function<FileOperationOutcome(const QStringList& files, const QVariantMap& values,
                                                   const QString& outputDirectory,
                                                   const FileOperationContext& context)>;
    enum class ResultUse {
        replaceContent, // the outputs become the shelf's items
        removeInputs,   // the inputs leave the shelf (they went to the Trash)
        keepContent,    // the shelf stays as it is (a copy elsewhere, the wallpaper, the clipboard)
        showInfo,       // nothing runs in the background: a window shows the item's details
    };
    enum class TextUse { none, clipboard, clipboardAndItem };

    FileOperationType type;
    std::function<OperationSettings()> settings;
    Run run;
    ResultUse resultUse = ResultUse::replaceContent;
    TextUse textUse = TextUse::none;
    // Whether the run writes into a fresh output folder of its own.
    bool needsOutputDirectory = false;
    // Further MIME check beyond the type's own rule (the image library's readable formats).
    std::function<bool(const QString& mimeType)> canRead;
};

class FileOperationTable final {
public:
    // In menu order.
    static const QList<FileOperationEntry>& entries();
    static const FileOperationEntry* entry(FileOperationType type);
};

} // namespace Vantrope
