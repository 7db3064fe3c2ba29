// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverItemMatcher.h"

#include <QList>

namespace Vantrope {

// One of the user's rules for a watched folder. The operator speaks of the rule itself: an `And` rule
// must hold, `Or` rules are alternatives.
struct DirectoryObserverFilter {
    enum class OperatorType { And, Or };

    OperatorType operatorType = OperatorType::And;
    DirectoryObserverItemMatcher matcher;

    // Empty rules let everything through; a single rule is its matcher whatever its operator. Otherwise
    // the list holds when no `And` rule fails and at least one rule holds.
    static bool evaluate(const DirectoryObserverItem& item, bool caseSensitive,
                         const QList<DirectoryObserverFilter>& filters);

    static QString rawValue(OperatorType operatorType);

    QJsonObject toJson() const;
    static std::expected<DirectoryObserverFilter, DirectoryObserverItemMatcher::Error>
    fromJson(const QJsonValue& value);

    bool operator==(const DirectoryObserverFilter&) const = default;
};

} // namespace Vantrope
