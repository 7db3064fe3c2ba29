// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsItem.h"

#include <array>
#include <cstddef>

namespace Vantrope {

namespace {

constexpr std::array s_modifierKeys = {QStringView(u"shift"), QStringView(u"command"),
                                       QStringView(u"control")};
constexpr std::array s_shelfLocations = {QStringView(u"topRight"),    QStringView(u"topLeft"),
                                         QStringView(u"bottomRight"), QStringView(u"bottomLeft"),
                                         QStringView(u"center"),      QStringView(u"cursor")};
constexpr std::array s_edgeActions = {QStringView(u"dock"), QStringView(u"retract"), QStringView(u"none")};
constexpr std::array s_menuBarIcons = {QStringView(u"traditional"), QStringView(u"document"),
                                       QStringView(u"documentTilted")};

static_assert(s_modifierKeys.size() == std::size_t(SettingsItem::ShelfTriggerModifierKey::control) + 1);
static_assert(s_shelfLocations.size() == std::size_t(SettingsItem::ShelfLocation::cursor) + 1);
static_assert(s_edgeActions.size() == std::size_t(SettingsItem::DoubleClickEdgeAction::none) + 1);
static_assert(s_menuBarIcons.size() == std::size_t(SettingsItem::MenuBarIcon::documentTilted) + 1);

// Each table lists the stored strings in the enum's case order.
template<typename Enum, std::size_t N> QString nameOf(Enum value, const std::array<QStringView, N>& names)
{
    return names.at(static_cast<std::size_t>(value)).toString();
}

template<typename Enum, std::size_t N>
std::optional<Enum> fromName(QStringView stored, const std::array<QStringView, N>& names)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (names[i] == stored) {
            return static_cast<Enum>(i);
        }
    }
    return std::nullopt;
}

template<typename Enum> std::optional<Enum> fromIndex(int stored, Enum last)
{
    if (stored < 0 || stored > static_cast<int>(last)) {
        return std::nullopt;
    }
    return static_cast<Enum>(stored);
}

} // namespace

int SettingsItem::storedValue(ShakeSensitivity value)
{
    return static_cast<int>(value);
}

int SettingsItem::storedValue(DoubleClick value)
{
    return static_cast<int>(value);
}

int SettingsItem::storedValue(NotchDragHighlightBehavior value)
{
    return static_cast<int>(value);
}

QString SettingsItem::storedValue(ShelfTriggerModifierKey value)
{
    return nameOf(value, s_modifierKeys);
}

QString SettingsItem::storedValue(ShelfLocation value)
{
    return nameOf(value, s_shelfLocations);
}

QString SettingsItem::storedValue(DoubleClickEdgeAction value)
{
    return nameOf(value, s_edgeActions);
}

QString SettingsItem::storedValue(MenuBarIcon value)
{
    return nameOf(value, s_menuBarIcons);
}

std::optional<SettingsItem::ShakeSensitivity> SettingsItem::shakeSensitivity(int stored)
{
    return fromIndex(stored, ShakeSensitivity::ludicrous);
}

std::optional<SettingsItem::DoubleClick> SettingsItem::doubleClick(int stored)
{
    return fromIndex(stored, DoubleClick::preview);
}

std::optional<SettingsItem::NotchDragHighlightBehavior> SettingsItem::notchDragHighlightBehavior(int stored)
{
    return fromIndex(stored, NotchDragHighlightBehavior::never);
}

std::optional<SettingsItem::ShelfTriggerModifierKey> SettingsItem::shelfTriggerModifierKey(QStringView stored)
{
    return fromName<ShelfTriggerModifierKey>(stored, s_modifierKeys);
}

std::optional<SettingsItem::ShelfLocation> SettingsItem::shelfLocation(QStringView stored)
{
    return fromName<ShelfLocation>(stored, s_shelfLocations);
}

std::optional<SettingsItem::DoubleClickEdgeAction> SettingsItem::doubleClickEdgeAction(QStringView stored)
{
    return fromName<DoubleClickEdgeAction>(stored, s_edgeActions);
}

std::optional<SettingsItem::MenuBarIcon> SettingsItem::menuBarIcon(QStringView stored)
{
    return fromName<MenuBarIcon>(stored, s_menuBarIcons);
}

} // namespace Vantrope
