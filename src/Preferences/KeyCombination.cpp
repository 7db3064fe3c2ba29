// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "KeyCombination.h"

#include "Preference.h"

namespace Vantrope {

namespace {

const QString s_keyCodeMember = QStringLiteral("keyCode");
const QString s_modifiersMember = QStringLiteral("modifiers");

// Qt gives printable keys their Unicode code point and all others a value of its own range.
bool isKey(int key)
{
    constexpr int firstSpecialKey = 0x01000000;
    return (key >= Qt::Key_Space && key <= 0x10ffff) || (key >= firstSpecialKey && key < Qt::Key_unknown);
}

constexpr int s_keyboardModifiers = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier |
                                    Qt::MetaModifier | Qt::KeypadModifier | Qt::GroupSwitchModifier;

} // namespace

std::optional<KeyCombination> KeyCombination::from(int key, int modifiers)
{
    if (!isKey(key) || (modifiers & ~s_keyboardModifiers) != 0) {
        return std::nullopt;
    }
    return KeyCombination(Qt::Key(key), Qt::KeyboardModifiers::fromInt(modifiers));
}

std::optional<KeyCombination> KeyCombination::fromDictionary(const QVariant& value)
{
    if (value.typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    const QVariantMap dictionary = value.toMap();
    // Read as strictly as an int preference: "49" or true is no key code.
    const std::optional<int> key = PreferenceValueTraits<int>::fromVariant(dictionary.value(s_keyCodeMember));
    const std::optional<int> modifiers =
        PreferenceValueTraits<int>::fromVariant(dictionary.value(s_modifiersMember));
    if (!key || !modifiers) {
        return std::nullopt;
    }
    return from(*key, *modifiers);
}

QVariantMap KeyCombination::toDictionary() const
{
    return {{s_keyCodeMember, int(m_key)}, {s_modifiersMember, int(m_modifiers.toInt())}};
}

} // namespace Vantrope
