#pragma once

namespace Vantrope {

// When a shake counts as done. `requiredNumberOfTurns` must be exceeded, not met.
struct CompletionTreshold {
    int requiredNumberOfTurns = 4;
    // Points of horizontal travel a run needs before its turn counts.
    double requiredTurnDistance = 20.0;
    // Seconds between two drag events after which the count starts afresh.
    double resetSessionTimeInterval = 0.2;

    friend bool operator==(const CompletionTreshold&, const CompletionTreshold&) = default;
};

} // namespace Vantrope
