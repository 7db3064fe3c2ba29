// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "Domains/Actions/ActionMenuItemProvider.h"
#include "DragSessionLabel.h"

#include <functional>
#include <optional>

namespace Vantrope {

// The shelf's own settings in the menu: a submenu with a row that names the shelf and one row per label
// colour. Each row is an instance of this action with its own choice.
class DragSessionSettingsAction final : public Action, public ActionMenuItemProvider {
public:
    // No colour: the name.
    struct Choice {
        std::optional<DragSessionLabelColor::Identifier> color;
    };
    using Handler = std::function<void(const Choice& choice)>;

    DragSessionSettingsAction(DragSessionLabel label, Handler handler, std::optional<Choice> choice = {});

    // The shelf's label changed; the next menu shows it.
    void setLabel(const DragSessionLabel& label) { m_label = label; }
    const DragSessionLabel& label() const { return m_label; }
    const std::optional<Choice>& choice() const { return m_choice; }

    ActionCategory category() const override { return ActionCategory::supplementary; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;
    bool isSearchable() const override { return !m_choice; }
    const ActionMenuItemProvider* menuItemProvider() const override { return this; }
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

    std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                 const ActionItemList& items) const override;

    static QString colorTitle(DragSessionLabelColor::Identifier color);

private:
    DragSessionLabel m_label;
    Handler m_handler;
    std::optional<Choice> m_choice;
};

} // namespace Vantrope
