// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <Qt>
#include <QVariant>
#include <QVariantMap>

namespace Vantrope {

// A key pressed with keyboard modifiers, as a hot key is bound. Stored as the dictionary
// {"keyCode": the Qt key, "modifiers": the Qt modifier flags}, both integers; the X11 layer turns it
// into a keysym and keycode.
class KeyCombination final {
public:
    // Nothing for a value that is no key (none, Qt::Key_unknown, one carrying modifier bits) or for
    // flags that are not keyboard modifiers.
    static std::optional<KeyCombination> from(int key, int modifiers);
    // Nothing unless `value` is a dictionary whose two members are integers making a combination as
    // above. Other members are ignored.
    static std::optional<KeyCombination> fromDictionary(const QVariant& value);

    QVariantMap toDictionary() const;

    Qt::Key key() const { return m_key; }
    Qt::KeyboardModifiers modifiers() const { return m_modifiers; }

    friend bool operator==(const KeyCombination&, const KeyCombination&) = default;

private:
    KeyCombination(Qt::Key key, Qt::KeyboardModifiers modifiers)
        : m_key(key)
        , m_modifiers(modifiers)
    {}

    Qt::Key m_key;
    Qt::KeyboardModifiers m_modifiers;
};

} // namespace Vantrope
