// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <functional>

namespace Vantrope {

// Puts what the clipboard holds on the shelf, leaving out what the shelf already took from it.
class AddFromClipboardAction final : public Action {
public:
    // Answers how many items went on the shelf.
    using Handler = std::function<int()>;

    // `hasPasteableItems` is read on the main thread when the menu is built: the clipboard may only be
    // asked there.
    AddFromClipboardAction(bool hasPasteableItems, Handler handler);

    ActionCategory category() const override { return ActionCategory::shelf; }
    QString identifier() const override;
    QString iconName() const override { return QStringLiteral("edit-paste"); }
    QString title() const override;
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    bool m_hasPasteableItems;
    Handler m_handler;
};

} // namespace Vantrope
