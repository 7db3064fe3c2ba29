// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QSet>

namespace Vantrope {

// Elements in first-seen order with later duplicates dropped. Needs a qHash for the element type.
template<typename Range> auto unique(const Range& range)
{
    using T = std::decay_t<decltype(*std::begin(range))>;
    QList<T> result;
    QSet<T> seen;
    for (const auto& element : range) {
        if (!seen.contains(element)) {
            seen.insert(element);
            result.append(element);
        }
    }
    return result;
}

} // namespace Vantrope
