// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionSearchItem.h"

#include <functional>

namespace Vantrope {

// A search entry that is no action, such as pinning the shelf; offered while `canPerformHandler` agrees.
struct ActionsControllerSupplementarySearchAction {
    ActionSearchItem item;
    std::function<bool()> canPerformHandler;
    std::function<bool()> performHandler;
};

} // namespace Vantrope
