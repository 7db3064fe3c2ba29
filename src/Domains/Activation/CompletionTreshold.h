// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <chrono>

namespace Vantrope {

// When a shake counts as done. `requiredNumberOfTurns` must be exceeded, not met.
struct CompletionTreshold {
    int requiredNumberOfTurns = 4;
    // Points of horizontal travel a run needs before its turn counts.
    double requiredTurnDistance = 20.0;
    // The gap between two drag events after which the count starts afresh.
    std::chrono::milliseconds resetSessionTimeInterval{200};

    friend bool operator==(const CompletionTreshold&, const CompletionTreshold&) = default;
};

} // namespace Vantrope
