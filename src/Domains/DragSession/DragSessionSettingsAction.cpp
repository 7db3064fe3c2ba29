// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionSettingsAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

DragSessionSettingsAction::DragSessionSettingsAction(DragSessionLabel label, Handler handler)
    : m_label(std::move(label))
    , m_handler(std::move(handler))
{}

QString DragSessionSettingsAction::identifier() const
{
    return QStringLiteral("drag_session_settings");
}

QString DragSessionSettingsAction::iconName() const
{
    return QStringLiteral("configure");
}

QString DragSessionSettingsAction::title() const
{
    return Localized("action.shelf-settings.title", "Shelf Settings");
}

bool DragSessionSettingsAction::canPerform(const ActionItemList&) const
{
    return true;
}

void DragSessionSettingsAction::perform(const ActionItemList&, ProgressHandler, Completion completion)
{
    if (m_handler) {
        m_handler();
    }
    completion(ActionResultContext{});
}

std::optional<ActionMenuEntry> DragSessionSettingsAction::makeMenuEntry(const std::shared_ptr<Action>& action,
                                                                        const ActionItemList&) const
{
    if (!action) {
        return std::nullopt;
    }
    // A named shelf shows its name here, so the row says which shelf the settings are of.
    const QString shown =
        m_label.name ? Localized("action.shelf-settings.named", "Settings of “%1”…").arg(*m_label.name)
                     : Localized("action.shelf-settings.row", "Shelf Settings…");
    return ActionMenuEntry{ActionMenuEntry::ActionRow{action, shown, iconName(), true}};
}

} // namespace Vantrope
