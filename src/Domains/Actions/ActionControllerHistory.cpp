// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionControllerHistory.h"

#include "Preferences/Preferences.h"

namespace Vantrope {

ActionControllerHistory::ActionControllerHistory(Preferences& preferences)
    : m_preferences(preferences)
{}

QStringList ActionControllerHistory::identifiers() const
{
    return m_preferences.value(PreferenceKeys::recentActions);
}

void ActionControllerHistory::record(const QString& identifier)
{
    QStringList recent = identifiers();
    recent.removeAll(identifier);
    recent.prepend(identifier);
    if (recent.size() > limit) {
        recent.resize(limit);
    }
    m_preferences.setValue(PreferenceKeys::recentActions, recent);
}

} // namespace Vantrope
