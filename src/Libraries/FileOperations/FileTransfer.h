// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "OperationSetting.h"

#include <optional>
#include <QString>
#include <QStringList>

namespace Vantrope {

// Copies or moves files and folders into a folder. What stands in the way under the same name is
// replaced (it goes to the Trash, so nothing is lost), kept beside the new one ("name 2.ext") or left
// alone, as the user chose. A file is written under a hidden name first and takes its own name only when
// complete, so a failure or a cancel never leaves half a file under a real name.
class FileTransfer final {
public:
    enum class Mode { copy, move };
    enum class ClashResolution { replace, keepBoth, skip };

    static std::optional<ClashResolution> clashResolution(const QString& value);

    // The names of `paths` that already exist in `destination`.
    static QStringList clashes(const QStringList& paths, const QString& destination);
    // "name.ext" in `folder` when free, else "name 2.ext", "name 3.ext"...
    static QString freeName(const QString& folder, const QString& fileName);

    // The new paths go to `outputFiles`, in order; a skipped item is neither an output nor a failure.
    static FileOperationOutcome transfer(const QStringList& paths, const QString& destination, Mode mode,
                                         ClashResolution resolution, const FileOperationContext& context);
};

} // namespace Vantrope
