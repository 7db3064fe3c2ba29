// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionsControllerMenuFactory.h"

#include "ActionMenuItemProvider.h"
#include "ActionsLogging.h"
#include "Libraries/Core/Localized.h"

#include <algorithm>
#include <map>

namespace Vantrope {

ActionsControllerMenuFactory::ActionsControllerMenuFactory(
    ActionList actions, ActionItemList items, QList<OperationsProvider::MenuItem> operationMenuItems,
    int systemShareActionsLimit, QList<ActionCategory> excludedCategories)
    : m_actions(std::move(actions))
    , m_items(std::move(items))
    , m_operationMenuItems(std::move(operationMenuItems))
    , m_systemShareActionsLimit(std::max(0, systemShareActionsLimit))
    , m_excludedCategories(std::move(excludedCategories))
{}

ActionsControllerMenu ActionsControllerMenuFactory::makeMenu() const
{
    ActionsControllerMenu menu{QStringLiteral("Actions"), {}};
    const std::vector<MenuItemGroup> groups = makeGroups();
    for (size_t index = 0; index < groups.size(); ++index) {
        // The operations follow the group before them without a line, as if they belonged to it.
        if (index > 0 && groups[index].category != ActionCategory::fileOperations) {
            menu.entries.push_back(ActionMenuEntry{ActionMenuEntry::Separator{}});
        }
        menu.entries.insert(menu.entries.end(), groups[index].entries.begin(), groups[index].entries.end());
    }
    return menu;
}

std::vector<ActionsControllerMenuFactory::MenuItemGroup> ActionsControllerMenuFactory::makeGroups() const
{
    // The map orders by category; within a category the actions keep the controller's order.
    std::map<ActionCategory, ActionList> actionsByCategory;
    for (const ActionPtr& action : m_actions) {
        if (action && !m_excludedCategories.contains(action->category())) {
            actionsByCategory[action->category()].append(action);
        }
    }

    std::vector<MenuItemGroup> groups;
    for (const auto& [category, actions] : actionsByCategory) {
        MenuItemGroup group{category, {}};
        if (category == ActionCategory::systemShare) {
            group.entries = makeSystemShareMenuEntries(actions);
        } else {
            for (const ActionPtr& action : actions) {
                appendEntry(group.entries, action);
            }
        }
        // A group whose actions all stayed out would only leave a stray separator.
        if (!group.entries.empty()) {
            groups.push_back(std::move(group));
        }
    }

    if (!m_excludedCategories.contains(ActionCategory::fileOperations) && !m_operationMenuItems.isEmpty()) {
        MenuItemGroup operations{ActionCategory::fileOperations, {}};
        for (const OperationsProvider::MenuItem& item : m_operationMenuItems) {
            operations.entries.push_back(ActionMenuEntry{ActionMenuEntry::OperationRow{item}});
        }
        // Before the supplementary group; without one, before the last group rather than after it.
        const auto supplementary = std::find_if(groups.begin(), groups.end(), [](const MenuItemGroup& group) {
            return group.category == ActionCategory::supplementary;
        });
        size_t place = 0;
        if (supplementary != groups.end()) {
            place = size_t(supplementary - groups.begin());
        } else if (!groups.empty()) {
            place = groups.size() - 1;
        }
        groups.insert(groups.begin() + std::ptrdiff_t(place), std::move(operations));
    }
    return groups;
}

std::vector<ActionMenuEntry>
ActionsControllerMenuFactory::makeSystemShareMenuEntries(const ActionList& shareActions) const
{
    std::vector<ActionMenuEntry> entries;
    const qsizetype inlineCount = std::min<qsizetype>(m_systemShareActionsLimit, shareActions.size());
    for (qsizetype index = 0; index < inlineCount; ++index) {
        appendEntry(entries, shareActions[index]);
    }
    if (shareActions.size() > inlineCount) {
        ActionMenuEntry::Submenu more{Localized("action.share.more.title", "More"),
                                      QStringLiteral("emblem-shared"),
                                      QStringLiteral("Share"),
                                      {}};
        for (qsizetype index = inlineCount; index < shareActions.size(); ++index) {
            appendEntry(more.entries, shareActions[index]);
        }
        if (!more.entries.empty()) {
            entries.push_back(ActionMenuEntry{std::move(more)});
        }
    }
    if (entries.empty()) {
        qCWarning(lcActions) << "Failed to create system share menu items!";
    }
    return entries;
}

void ActionsControllerMenuFactory::appendEntry(std::vector<ActionMenuEntry>& entries,
                                               const ActionPtr& action) const
{
    const ActionMenuItemProvider* provider = action->menuItemProvider();
    if (!provider) {
        return;
    }
    if (std::optional<ActionMenuEntry> entry = provider->makeMenuEntry(action, m_items)) {
        entries.push_back(std::move(*entry));
    }
}

} // namespace Vantrope
