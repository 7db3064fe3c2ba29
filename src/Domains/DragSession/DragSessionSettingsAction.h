// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "Domains/Actions/ActionMenuItemProvider.h"
#include "DragSessionLabel.h"

#include <functional>
#include <optional>

namespace Vantrope {

// The shelf's own settings in the menu and in search: one row that opens the shelf's settings popover.
class DragSessionSettingsAction final : public Action, public ActionMenuItemProvider {
public:
    using Handler = std::function<void()>;

    DragSessionSettingsAction(DragSessionLabel label, Handler handler);

    // The shelf's label changed; the next menu shows its name.
    void setLabel(const DragSessionLabel& label) { m_label = label; }
    const DragSessionLabel& label() const { return m_label; }

    ActionCategory category() const override { return ActionCategory::supplementary; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;
    const ActionMenuItemProvider* menuItemProvider() const override { return this; }
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

    std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                 const ActionItemList& items) const override;

private:
    DragSessionLabel m_label;
    Handler m_handler;
};

} // namespace Vantrope
