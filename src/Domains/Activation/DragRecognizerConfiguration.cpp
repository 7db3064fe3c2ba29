// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragRecognizerConfiguration.h"

#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"

namespace Vantrope {

namespace {

DragRecognizer::Sensitivity toSensitivity(SettingsItem::ShakeSensitivity sensitivity)
{
    switch (sensitivity) {
    case SettingsItem::ShakeSensitivity::normal:
        break;
    case SettingsItem::ShakeSensitivity::high:
        return DragRecognizer::Sensitivity::high;
    case SettingsItem::ShakeSensitivity::ludicrous:
        return DragRecognizer::Sensitivity::ludicrous;
    }
    return DragRecognizer::Sensitivity::normal;
}

} // namespace

DragRecognizerConfiguration::DragRecognizerConfiguration(Preferences& preferences, DragRecognizer& recognizer,
                                                         QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_recognizer(recognizer)
{
    m_recognizer.setSensitivity(
        sensitivityAtStart(m_preferences.value(PreferenceKeys::shakeGestureSensitivity)));
    m_recognizer.setShakeGestureDetectionDisabled(
        m_preferences.value(PreferenceKeys::shakeGestureDisabled));
    applyIgnoredApplications();
    m_recognizer.setModifierFlags(modifierFlags(m_preferences));

    connect(&m_preferences, &Preferences::changed, this, &DragRecognizerConfiguration::preferenceChanged);
}

DragRecognizer::Sensitivity DragRecognizerConfiguration::sensitivityAtStart(int stored)
{
    return sensitivityOnChange(stored).value_or(DragRecognizer::Sensitivity::normal);
}

std::optional<DragRecognizer::Sensitivity> DragRecognizerConfiguration::sensitivityOnChange(int stored)
{
    const std::optional<SettingsItem::ShakeSensitivity> sensitivity = SettingsItem::shakeSensitivity(stored);
    if (!sensitivity) {
        return std::nullopt;
    }
    return toSensitivity(*sensitivity);
}

QStringList DragRecognizerConfiguration::ignoredApplications(const QStringList& stored)
{
    QStringList names;
    names.reserve(stored.size());
    for (QString name : stored) {
        names.append(name.remove(QStringLiteral(".app")));
    }
    return names;
}

std::optional<EventModifierFlags> DragRecognizerConfiguration::modifierFlags(const Preferences& preferences)
{
    if (!preferences.value(PreferenceKeys::shelfTriggerModifierKeyEnabled)) {
        return std::nullopt;
    }
    const auto key = SettingsItem::shelfTriggerModifierKey(
                         preferences.value(PreferenceKeys::shelfTriggerModifierKey))
                         .value_or(SettingsItem::ShelfTriggerModifierKey::shift);
    switch (key) {
    case SettingsItem::ShelfTriggerModifierKey::shift:
        break;
    case SettingsItem::ShelfTriggerModifierKey::command:
        return EventModifierFlags(EventModifierFlag::command);
    case SettingsItem::ShelfTriggerModifierKey::control:
        return EventModifierFlags(EventModifierFlag::control);
    }
    return EventModifierFlags(EventModifierFlag::shift);
}

void DragRecognizerConfiguration::preferenceChanged(PreferenceKey key)
{
    switch (key) {
    case PreferenceKey::shakeGestureSensitivity:
        if (const auto sensitivity =
                sensitivityOnChange(m_preferences.value(PreferenceKeys::shakeGestureSensitivity))) {
            m_recognizer.setSensitivity(*sensitivity);
        }
        break;
    case PreferenceKey::shakeGestureDisabled:
        m_recognizer.setShakeGestureDetectionDisabled(
            m_preferences.value(PreferenceKeys::shakeGestureDisabled));
        break;
    case PreferenceKey::ignoredApplication:
        applyIgnoredApplications();
        break;
    case PreferenceKey::shelfTriggerModifierKey:
    case PreferenceKey::shelfTriggerModifierKeyEnabled:
        m_recognizer.setModifierFlags(modifierFlags(m_preferences));
        break;
    default:
        break;
    }
}

void DragRecognizerConfiguration::applyIgnoredApplications()
{
    m_recognizer.setIgnoredApplications(
        ignoredApplications(m_preferences.value(PreferenceKeys::ignoredApplication)));
}

} // namespace Vantrope
