// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionError.h"
#include "ActionItem.h"

#include <expected>
#include <functional>

namespace Vantrope {

// An action that asks for something before it runs (an upload's options sheet, say) and assembles
// its items itself.
class ActionPreparation {
public:
    using Result = std::expected<ActionItemList, ActionError>;
    // May be called on any thread; the controller goes back to the main thread itself.
    using Completion = std::function<void(const Result&)>;

    virtual ~ActionPreparation() = default;

    virtual bool hidesSourceWindowDuringPreparation() const = 0;
    // Answers with the items to perform with.
    virtual void prepare(const ActionItemList& items, Completion completion) = 0;
};

} // namespace Vantrope
