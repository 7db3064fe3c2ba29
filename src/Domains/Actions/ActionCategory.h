// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// The menu groups, in the order they appear; comparing two categories compares that order.
enum class ActionCategory {
    primary,
    systemShare,
    upload,
    // Never an action's own category: the group of the file operations in the menu.
    fileOperations,
    shelf,
    supplementary,
};

QString actionCategoryName(ActionCategory category);

} // namespace Vantrope
