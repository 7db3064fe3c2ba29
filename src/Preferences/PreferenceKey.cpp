#include "PreferenceKey.h"

#include <QHash>

namespace Vantrope {

namespace {

constexpr std::array<QStringView, preferenceKeyCount> s_storedNames = {
#define VANTROPE_PREFERENCE_NAME(name, stored, type) QStringView(u"" stored),
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_NAME)
#undef VANTROPE_PREFERENCE_NAME
};

constexpr std::array<PreferenceKey, preferenceKeyCount> s_allKeys = {
#define VANTROPE_PREFERENCE_ENTRY(name, stored, type) PreferenceKey::name,
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_ENTRY)
#undef VANTROPE_PREFERENCE_ENTRY
};

const QHash<QStringView, PreferenceKey>& keysByStoredName()
{
    static const QHash<QStringView, PreferenceKey> keys = [] {
        QHash<QStringView, PreferenceKey> result;
        result.reserve(qsizetype(preferenceKeyCount));
        for (const PreferenceKey key : s_allKeys) {
            result.insert(s_storedNames[preferenceKeyIndex(key)], key);
        }
        return result;
    }();
    return keys;
}

} // namespace

QString preferenceStoredName(PreferenceKey key)
{
    return s_storedNames[preferenceKeyIndex(key)].toString();
}

std::optional<PreferenceKey> preferenceKeyFromStoredName(QStringView storedName)
{
    const auto& keys = keysByStoredName();
    const auto it = keys.constFind(storedName);
    if (it == keys.constEnd()) {
        return std::nullopt;
    }
    return *it;
}

std::span<const PreferenceKey, preferenceKeyCount> allPreferenceKeys()
{
    return s_allKeys;
}

} // namespace Vantrope
