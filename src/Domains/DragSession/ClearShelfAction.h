// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <functional>

namespace Vantrope {

// ClearShelfAction0
class ClearShelfAction final : public Action {
public:
    using Handler = std::function<void()>;

    explicit ClearShelfAction(Handler handler);

    ActionCategory category() const override { return ActionCategory::supplementary; }
    QString identifier() const override;
    QString iconName() const override { return QStringLiteral("edit-clear-all"); }
    QString title() const override;
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    Handler m_handler;
};

} // namespace Vantrope
