// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

namespace Vantrope {

// Shows the items in the file manager. Offered only when every item is a local file.
class RevealInFinderAction final : public Action {
public:
    ActionCategory category() const override { return ActionCategory::primary; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;

    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;
};

} // namespace Vantrope
