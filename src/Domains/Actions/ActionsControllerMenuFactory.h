// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"
#include "ActionCategory.h"
#include "ActionItem.h"
#include "ActionMenuEntry.h"
#include "OperationsProvider.h"

#include <QList>
#include <vector>

namespace Vantrope {

// Lays out the action menu: one group per category in category order, separators between groups,
// share targets beyond the limit in a submenu, and the file operations beside the last groups.
// Works on values only, so it runs on any thread.
class ActionsControllerMenuFactory final {
public:
    static constexpr int defaultSystemShareActionsLimit = 4;

    struct MenuItemGroup {
        ActionCategory category;
        std::vector<ActionMenuEntry> entries;
    };

    // `actions` are those that can run on `items`, in the controller's order. `operationMenuItems` are
    // those of the operations controller; empty when there is none.
    ActionsControllerMenuFactory(ActionList actions, ActionItemList items,
                                 QList<OperationsProvider::MenuItem> operationMenuItems,
                                 int systemShareActionsLimit = defaultSystemShareActionsLimit,
                                 QList<ActionCategory> excludedCategories = {});

    ActionsControllerMenu makeMenu() const;

private:
    std::vector<MenuItemGroup> makeGroups() const;
    std::vector<ActionMenuEntry> makeSystemShareMenuEntries(const ActionList& shareActions) const;
    void appendEntry(std::vector<ActionMenuEntry>& entries, const ActionPtr& action) const;

    ActionList m_actions;
    ActionItemList m_items;
    QList<OperationsProvider::MenuItem> m_operationMenuItems;
    int m_systemShareActionsLimit;
    QList<ActionCategory> m_excludedCategories;
};

} // namespace Vantrope
