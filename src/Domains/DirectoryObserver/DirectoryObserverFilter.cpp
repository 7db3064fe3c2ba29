// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryObserverFilter.h"

namespace Vantrope {

namespace {
const QString operatorTypeKey = QStringLiteral("operatorType");
const QString matcherKey = QStringLiteral("matcher");
} // namespace

bool DirectoryObserverFilter::evaluate(const DirectoryObserverItem& item, bool caseSensitive,
                                       const QList<DirectoryObserverFilter>& filters)
{
    if (filters.isEmpty()) {
        return true;
    }
    if (filters.size() == 1) {
        return filters.first().matcher.matches(item, caseSensitive);
    }
    bool result = false;
    for (const DirectoryObserverFilter& filter : filters) {
        const bool matches = filter.matcher.matches(item, caseSensitive);
        if (!matches && filter.operatorType == OperatorType::And) {
            return false;
        }
        result = result || matches;
    }
    return result;
}

QString DirectoryObserverFilter::rawValue(OperatorType operatorType)
{
    return operatorType == OperatorType::And ? QStringLiteral("and") : QStringLiteral("or");
}

QJsonObject DirectoryObserverFilter::toJson() const
{
    return QJsonObject{{operatorTypeKey, rawValue(operatorType)}, {matcherKey, matcher.toJson()}};
}

std::expected<DirectoryObserverFilter, DirectoryObserverItemMatcher::Error>
DirectoryObserverFilter::fromJson(const QJsonValue& value)
{
    using Error = DirectoryObserverItemMatcher::Error;
    const QJsonObject object = value.toObject();
    const QString operatorType = object.value(operatorTypeKey).toString();
    if (operatorType != rawValue(OperatorType::And) && operatorType != rawValue(OperatorType::Or)) {
        return std::unexpected(
            Error{Error::Kind::decodeError, QStringLiteral("unknown operator \"%1\"").arg(operatorType)});
    }
    auto matcher = DirectoryObserverItemMatcher::fromJson(object.value(matcherKey));
    if (!matcher) {
        return std::unexpected(matcher.error());
    }
    return DirectoryObserverFilter{operatorType == rawValue(OperatorType::And) ? OperatorType::And
                                                                               : OperatorType::Or,
                                   std::move(*matcher)};
}

} // namespace Vantrope
