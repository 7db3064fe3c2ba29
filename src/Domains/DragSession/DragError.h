// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// Why a drop was refused.
struct DragError {
    enum class Kind { rejected, other };
    enum class RejectionType { empty, existing, combined };

    Kind kind = Kind::other;
    RejectionType rejection = RejectionType::empty;

    static DragError rejected(RejectionType type) { return {Kind::rejected, type}; }
    static DragError other() { return {Kind::other, RejectionType::empty}; }

    bool operator==(const DragError&) const = default;
};

} // namespace Vantrope
