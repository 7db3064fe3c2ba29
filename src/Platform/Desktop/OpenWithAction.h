// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DesktopApplications.h"
#include "Domains/Actions/Action.h"
#include "Domains/Actions/ActionMenuItemProvider.h"

namespace Vantrope {

// Makes the "Open With" row: a submenu of the applications that open every item, one
// `OpenWithApplicationAction` per row.
class OpenWithActionMenuProvider final : public ActionMenuItemProvider {
public:
    std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                 const ActionItemList& items) const override;
};

// The "Open With" submenu. It runs nothing itself: its rows do.
class OpenWithAction final : public Action {
public:
    ActionCategory category() const override { return ActionCategory::primary; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;
    bool isSearchable() const override { return false; }
    const ActionMenuItemProvider* menuItemProvider() const override { return &m_provider; }

    // At least one application opens all of them.
    bool canPerform(const ActionItemList& items) const override;
    // Opens the items with the first of the common applications, the one the submenu lists first.
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    OpenWithActionMenuProvider m_provider;
};

} // namespace Vantrope
