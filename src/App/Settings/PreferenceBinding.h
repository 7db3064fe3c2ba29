// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Preferences/PreferenceKey.h"

#include <QString>
#include <QVariant>

class QCheckBox;
class QComboBox;

namespace Vantrope {

class Preferences;

// Ties a control to one preference: a change in the control is written at once, and a value written
// elsewhere (the command line, another window) shows in the control.
class PreferenceBinding final {
public:
    PreferenceBinding() = delete;

    // `inverted` for keys that say the opposite of the box, such as "ShakeGestureDisabled".
    static void bind(QCheckBox* box, Preferences& preferences, TypedPreferenceKey<bool> key,
                     bool inverted = false);
    // The items carry the stored values as their data. A stored value no item has shows the first item.
    static void bind(QComboBox* box, Preferences& preferences, TypedPreferenceKey<int> key);
    static void bind(QComboBox* box, Preferences& preferences, TypedPreferenceKey<QString> key);

    // The key's label from the preference table.
    static QString label(PreferenceKey key);

private:
    static void selectData(QComboBox* box, const QVariant& value);
};

} // namespace Vantrope
