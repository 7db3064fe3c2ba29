// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/ReservedTemporaryDirectory.h"

#include <expected>
#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope::DraggableStorage {

// Where an item that is not a file by itself puts the file that stands for it.
std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName);

// The same, in a folder of its own named after what the file holds: equal contents share a file (and
// so count as one item), different contents never overwrite one another, however alike their names.
std::optional<QString> filePath(ReservedTemporaryDirectory directory, const QString& fileName,
                                const QByteArray& content);

// Writes the file. A new one appears whole; an existing one has its contents replaced in place, since
// another shelf may follow it by its inode, which a write through a renamed temporary file would take
// away from under it.
std::expected<void, QString> overwrite(const QString& path, const QByteArray& data);

} // namespace Vantrope::DraggableStorage
