// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionSettingsAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

DragSessionSettingsAction::DragSessionSettingsAction(DragSessionLabel label, Handler handler,
                                                     std::optional<Choice> choice)
    : m_label(std::move(label))
    , m_handler(std::move(handler))
    , m_choice(choice)
{}

QString DragSessionSettingsAction::identifier() const
{
    if (!m_choice) {
        return QStringLiteral("drag_session_settings");
    }
    if (!m_choice->color) {
        return QStringLiteral("drag_session_settings_name");
    }
    return QStringLiteral("drag_session_settings_color_") + DragSessionLabelColor::rawValue(*m_choice->color);
}

QString DragSessionSettingsAction::iconName() const
{
    return m_choice ? QString() : QStringLiteral("configure");
}

QString DragSessionSettingsAction::colorTitle(DragSessionLabelColor::Identifier color)
{
    using Id = DragSessionLabelColor::Identifier;
    switch (color) {
    case Id::monochrome:
        return Localized("label-color.monochrome", "Gray");
    case Id::orange:
        return Localized("label-color.orange", "Orange");
    case Id::yellow:
        return Localized("label-color.yellow", "Yellow");
    case Id::green:
        return Localized("label-color.green", "Green");
    case Id::turquoise:
        return Localized("label-color.turquoise", "Turquoise");
    case Id::blue:
        return Localized("label-color.blue", "Blue");
    case Id::pink:
        return Localized("label-color.pink", "Pink");
    case Id::coral:
        return Localized("label-color.coral", "Coral");
    case Id::khaki:
        return Localized("label-color.khaki", "Khaki");
    case Id::spring:
        return Localized("label-color.spring", "Spring");
    }
    return {};
}

QString DragSessionSettingsAction::title() const
{
    if (!m_choice) {
        return Localized("action.shelf-settings.title", "Shelf Settings");
    }
    if (!m_choice->color) {
        return Localized("action.shelf-settings.name", "Name…");
    }
    return colorTitle(*m_choice->color);
}

bool DragSessionSettingsAction::canPerform(const ActionItemList&) const
{
    return true;
}

void DragSessionSettingsAction::perform(const ActionItemList&, ProgressHandler, Completion completion)
{
    // From search the whole settings row names the shelf, the one setting that needs typing.
    if (m_handler) {
        m_handler(m_choice.value_or(Choice{}));
    }
    completion(ActionResultContext{});
}

std::optional<ActionMenuEntry> DragSessionSettingsAction::makeMenuEntry(const std::shared_ptr<Action>& action,
                                                                        const ActionItemList&) const
{
    if (!action) {
        return std::nullopt;
    }
    if (m_choice) {
        return ActionMenuEntry{ActionMenuEntry::ActionRow{action, title(), iconName(), true}};
    }
    ActionMenuEntry::Submenu submenu;
    submenu.title = m_label.name.value_or(title());
    submenu.iconName = iconName();
    submenu.menuTitle = title();
    const auto row = [this](const Choice& choice, std::optional<bool> checked) {
        auto rowAction = std::make_shared<DragSessionSettingsAction>(m_label, m_handler, choice);
        ActionMenuEntry::ActionRow entry{rowAction, rowAction->title(), rowAction->iconName(), true};
        entry.checked = checked;
        return ActionMenuEntry{entry};
    };
    submenu.entries.push_back(row(Choice{}, std::nullopt));
    submenu.entries.push_back(ActionMenuEntry{ActionMenuEntry::Separator{}});
    for (const auto color : DragSessionLabelColor::allIdentifiers()) {
        submenu.entries.push_back(row(Choice{color}, m_label.color.id() == color));
    }
    return ActionMenuEntry{std::move(submenu)};
}

} // namespace Vantrope
