// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PreferenceBinding.h"

#include "Preferences/PreferenceDefinition.h"
#include "Preferences/Preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSignalBlocker>

namespace Vantrope {

void PreferenceBinding::bind(QCheckBox* box, Preferences& preferences, TypedPreferenceKey<bool> key,
                             bool inverted)
{
    const auto show = [box, &preferences, key, inverted] {
        const QSignalBlocker blocker(box);
        box->setChecked(preferences.value(key) != inverted);
    };
    show();
    QObject::connect(box, &QCheckBox::toggled, box, [&preferences, key, inverted](bool checked) {
        preferences.setValue(key, checked != inverted);
    });
    QObject::connect(&preferences, &Preferences::changed, box, [show, key](PreferenceKey changed) {
        if (changed == key.key()) {
            show();
        }
    });
}

void PreferenceBinding::bind(QComboBox* box, Preferences& preferences, TypedPreferenceKey<int> key)
{
    selectData(box, preferences.value(key));
    QObject::connect(box, &QComboBox::activated, box, [box, &preferences, key](int index) {
        preferences.setValue(key, box->itemData(index).toInt());
    });
    QObject::connect(&preferences, &Preferences::changed, box,
                     [box, &preferences, key](PreferenceKey changed) {
                         if (changed == key.key()) {
                             selectData(box, preferences.value(key));
                         }
                     });
}

void PreferenceBinding::bind(QComboBox* box, Preferences& preferences, TypedPreferenceKey<QString> key)
{
    selectData(box, preferences.value(key));
    QObject::connect(box, &QComboBox::activated, box, [box, &preferences, key](int index) {
        preferences.setValue(key, box->itemData(index).toString());
    });
    QObject::connect(&preferences, &Preferences::changed, box,
                     [box, &preferences, key](PreferenceKey changed) {
                         if (changed == key.key()) {
                             selectData(box, preferences.value(key));
                         }
                     });
}

QString PreferenceBinding::label(PreferenceKey key)
{
    return PreferenceDefinition::of(key).localizedLabel();
}

void PreferenceBinding::selectData(QComboBox* box, const QVariant& value)
{
    const QSignalBlocker blocker(box);
    const int index = box->findData(value);
    box->setCurrentIndex(index >= 0 ? index : 0);
}

} // namespace Vantrope
