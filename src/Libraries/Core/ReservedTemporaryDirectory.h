// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QString>

namespace Vantrope {

// Folders under the program's temporary directory ($XDG_CACHE_HOME/vantrope) that hold files the program
// writes itself and clears later.
enum class ReservedTemporaryDirectory { textFiles, promises, archives, shortcuts, logs, operations };

namespace TemporaryDirectories {

// $XDG_CACHE_HOME/vantrope, created mode 0700 when missing.
std::optional<QString> temporaryDirectory();

// The reserved folder, created mode 0700 when missing. Absent when it cannot be created.
std::optional<QString> path(ReservedTemporaryDirectory directory);

QString folderName(ReservedTemporaryDirectory directory);

} // namespace TemporaryDirectories

} // namespace Vantrope
