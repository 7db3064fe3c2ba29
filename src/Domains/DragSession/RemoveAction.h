// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <functional>

namespace Vantrope {

// RemoveAction0
class RemoveAction final : public Action {
public:
    using Handler = std::function<void(const ActionItemList& items)>;

    explicit RemoveAction(Handler handler);

    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override { return QStringLiteral("list-remove"); }
    QString title() const override;
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    Handler m_handler;
};

} // namespace Vantrope
