// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionItem.h"
#include "ActionMenuEntry.h"

#include <memory>
#include <optional>

namespace Vantrope {

class Action;

// Makes the menu row of an action; an action with a submenu of its own brings its own provider.
class ActionMenuItemProvider {
public:
    virtual ~ActionMenuItemProvider() = default;
    // None leaves the action out of the menu.
    virtual std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                         const ActionItemList& items) const = 0;
};

} // namespace Vantrope
