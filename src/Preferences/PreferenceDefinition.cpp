// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PreferenceDefinition.h"

#include "Libraries/Core/Localized.h"
#include "Preference.h"
#include "SettingsItem.h"

#include <array>

namespace Vantrope {

namespace {

// The words the table's columns are written in.
using enum PreferenceDefaultUse;

constexpr PreferenceDefinition::Label internal;

constexpr PreferenceDefinition::Label label(const char* key, const char* english)
{
    return {key, english};
}

template<typename T> QVariant storedDefault(const std::optional<T>& value)
{
    return value ? PreferenceValueTraits<T>::toVariant(*value) : QVariant();
}

const std::array<PreferenceDefinition, preferenceKeyCount>& definitions()
{
    static const std::array<PreferenceDefinition, preferenceKeyCount> table = {{
#define VANTROPE_PREFERENCE_DEFINITION(name, stored, type, use, labelColumn, ...)                            \
    {PreferenceKey::name,                                                                                    \
     QStringView(u"" stored),                                                                                \
     PreferenceValueTypeOf<type>::value,                                                                     \
     use,                                                                                                    \
     storedDefault(std::optional<type>(__VA_ARGS__)),                                                        \
     labelColumn},
        VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_DEFINITION)
#undef VANTROPE_PREFERENCE_DEFINITION
    }};
    return table;
}

} // namespace

QString PreferenceDefinition::localizedLabel() const
{
    return isInternal() ? QString() : Localized(label.key, label.english);
}

std::span<const PreferenceDefinition> PreferenceDefinition::all()
{
    return definitions();
}

const PreferenceDefinition& PreferenceDefinition::of(PreferenceKey key)
{
    return definitions()[preferenceKeyIndex(key)];
}

const PreferenceDefinition* PreferenceDefinition::find(QStringView storedName)
{
    for (const PreferenceDefinition& definition : definitions()) {
        if (definition.storedName == storedName) {
            return &definition;
        }
    }
    return nullptr;
}

} // namespace Vantrope
