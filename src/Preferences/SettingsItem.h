// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QString>
#include <QStringView>

namespace Vantrope {

// The enums that settings are stored as. The stored forms are what preference files hold: an index
// for the first three, a string for the others. Unknown stored forms give no value; each reader
// decides what that means.
class SettingsItem final {
public:
    SettingsItem() = delete;

    enum class ShakeSensitivity { normal, high, ludicrous };
    enum class DoubleClick { showInFileManager, open, none, preview };
    enum class NotchDragHighlightBehavior { always, hover, never };
    enum class ShelfTriggerModifierKey { shift, command, control };
    enum class ShelfLocation { topRight, topLeft, bottomRight, bottomLeft, center, cursor };
    enum class DoubleClickEdgeAction { dock, retract, none };
    enum class MenuBarIcon { traditional, document, documentTilted };

    static int storedValue(ShakeSensitivity value);
    static int storedValue(DoubleClick value);
    static int storedValue(NotchDragHighlightBehavior value);
    static QString storedValue(ShelfTriggerModifierKey value);
    static QString storedValue(ShelfLocation value);
    static QString storedValue(DoubleClickEdgeAction value);
    static QString storedValue(MenuBarIcon value);

    static std::optional<ShakeSensitivity> shakeSensitivity(int stored);
    static std::optional<DoubleClick> doubleClick(int stored);
    static std::optional<NotchDragHighlightBehavior> notchDragHighlightBehavior(int stored);
    static std::optional<ShelfTriggerModifierKey> shelfTriggerModifierKey(QStringView stored);
    static std::optional<ShelfLocation> shelfLocation(QStringView stored);
    static std::optional<DoubleClickEdgeAction> doubleClickEdgeAction(QStringView stored);
    static std::optional<MenuBarIcon> menuBarIcon(QStringView stored);
};

} // namespace Vantrope
