// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Localized.h"
#include "ShelfCommandAction.h"

namespace Vantrope {

// Takes the items off the shelf; their files stay where they are.
class RemoveAction final : public ShelfCommandAction {
public:
    explicit RemoveAction(Handler handler)
        : ShelfCommandAction(ActionCategory::shelf, QStringLiteral("drag_session_stack_remove"),
                             QStringLiteral("list-remove"), false, std::move(handler))
    {}

    QString title() const override
    {
        return Localized("action.remove-from-stack.title", "Remove from Shelf");
    }
};

} // namespace Vantrope
