// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

// Which open shelves a close request takes away.
enum class SessionCloseFilter {
    empty = 0,     // shelves nothing landed on and nothing is happening in
    withItems = 1, // shelves that hold items
    all = 2,
};

} // namespace Vantrope
