// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionMenuItemProvider.h"

namespace Vantrope {

// A plain row with the action's title and icon.
class DefaultActionMenuItemProvider final : public ActionMenuItemProvider {
public:
    static const DefaultActionMenuItemProvider& shared();

    std::optional<ActionMenuEntry> makeMenuEntry(const std::shared_ptr<Action>& action,
                                                 const ActionItemList& items) const override;
};

} // namespace Vantrope
