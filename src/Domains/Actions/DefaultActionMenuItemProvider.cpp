// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DefaultActionMenuItemProvider.h"

#include "Action.h"

namespace Vantrope {

const DefaultActionMenuItemProvider& DefaultActionMenuItemProvider::shared()
{
    static const DefaultActionMenuItemProvider provider;
    return provider;
}

std::optional<ActionMenuEntry>
DefaultActionMenuItemProvider::makeMenuEntry(const std::shared_ptr<Action>& action,
                                             const ActionItemList&) const
{
    if (!action) {
        return std::nullopt;
    }
    return ActionMenuEntry{ActionMenuEntry::ActionRow{action, action->title(), action->iconName(), true}};
}

} // namespace Vantrope
