// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragRecognizer.h"
#include "Preferences/PreferenceKey.h"

#include <optional>
#include <QObject>
#include <QStringList>

namespace Vantrope {

class Preferences;

// Keeps the recognizer in step with the user's settings: sensitivity, the shake switch, the ignored
// applications and the trigger modifier. Applies them at construction and again on each change.
class DragRecognizerConfiguration final : public QObject {
    Q_OBJECT

public:
    DragRecognizerConfiguration(Preferences& preferences, DragRecognizer& recognizer,
                                QObject* parent = nullptr);

    // At start every unknown index means normal; a change to an unknown index is ignored.
    static DragRecognizer::Sensitivity sensitivityAtStart(int stored);
    static std::optional<DragRecognizer::Sensitivity> sensitivityOnChange(int stored);
    // Names as the settings keep them, with every ".app" taken out.
    static QStringList ignoredApplications(const QStringList& stored);
    // None while the trigger key is switched off.
    static std::optional<EventModifierFlags> modifierFlags(const Preferences& preferences);

private:
    void preferenceChanged(PreferenceKey key);
    void applyIgnoredApplications();

    Preferences& m_preferences;
    DragRecognizer& m_recognizer;
};

} // namespace Vantrope
