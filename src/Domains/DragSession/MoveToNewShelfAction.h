// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <functional>

namespace Vantrope {

// Opens a new shelf with the items; moving empties this one, copying leaves it as it is.
class MoveToNewShelfAction final : public Action {
public:
    enum class Context { move, copy };
    using Handler = std::function<void(Context context, const ActionItemList& items)>;

    MoveToNewShelfAction(Context context, Handler handler);

    Context context() const { return m_context; }
    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override { return QStringLiteral("window-new"); }
    QString title() const override;
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    Context m_context;
    Handler m_handler;
};

} // namespace Vantrope
