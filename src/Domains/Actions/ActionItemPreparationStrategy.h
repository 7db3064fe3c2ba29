// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

// What has to happen to the items before an action may work on them.
enum class ActionItemPreparationStrategy {
    none,
    // Every folder among the items becomes a zip file of its own.
    zipDirectories,
    // Two or more items together become one zip file.
    zip,
};

} // namespace Vantrope
