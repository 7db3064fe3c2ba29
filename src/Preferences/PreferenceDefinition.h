// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PreferenceKey.h"

#include <QString>
#include <QStringView>
#include <QVariant>
#include <span>

namespace Vantrope {

// When the default of a key applies.
enum class PreferenceDefaultUse {
    // Only as the value of a key that holds no value of its type; nothing is written.
    atRead,
    // `Preferences::registerDefaults` writes it when the key holds no value of its type.
    firstRun,
    // `Preferences::registerDefaults` writes a value it works out from other keys; the default is what
    // a read finds otherwise.
    firstRunRule,
};

// One row of the preference table: what a settings list or a command line needs to show a key, look
// it up and check what it is given.
struct PreferenceDefinition {
    struct Label {
        const char* key = nullptr;
        const char* english = nullptr;
    };

    PreferenceKey key;
    // The name in the preferences file.
    QStringView storedName;
    PreferenceValueType type;
    PreferenceDefaultUse defaultUse;
    // In the stored form of the type; null for a key without a default.
    QVariant defaultValue;
    Label label;

    // Bookkeeping of the program that no settings screen shows.
    bool isInternal() const { return label.key == nullptr; }
    // In the user's language; empty for internal keys.
    QString localizedLabel() const;

    // Every key, in enum order.
    static std::span<const PreferenceDefinition> all();
    static const PreferenceDefinition& of(PreferenceKey key);
    // Null for a name that no key has, such as one of a key that was dropped.
    static const PreferenceDefinition* find(QStringView storedName);
};

} // namespace Vantrope
