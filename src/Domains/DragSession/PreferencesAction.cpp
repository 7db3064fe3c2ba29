// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PreferencesAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

PreferencesAction::PreferencesAction(Handler handler)
    : m_handler(std::move(handler))
{}

QString PreferencesAction::identifier() const
{
    return QStringLiteral("global_preferences");
}

QString PreferencesAction::title() const
{
    return Localized("action.preferences.title", "Preferences…");
}

bool PreferencesAction::canPerform(const ActionItemList& items) const
{
    Q_UNUSED(items);
    return true;
}

void PreferencesAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    Q_UNUSED(items);
    if (m_handler) {
        m_handler();
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
