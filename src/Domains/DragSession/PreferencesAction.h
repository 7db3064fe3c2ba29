// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"
#include "ShelfCommandAction.h"

namespace Vantrope {

// Opens the settings window.
class PreferencesAction final : public ShelfCommandAction {
public:
    explicit PreferencesAction(std::function<void()> handler)
        : ShelfCommandAction(ActionCategory::supplementary, ActionIdentifiers::preferences,
                             QStringLiteral("preferences-system"), false,
                             [handler = std::move(handler)](const ActionItemList&) {
                                 if (handler) {
                                     handler();
                                 }
                             })
    {}

    QString title() const override { return Localized("action.preferences.title", "Preferences…"); }
};

} // namespace Vantrope
