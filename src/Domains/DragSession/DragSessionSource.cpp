// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionSource.h"

namespace Vantrope {

DraggableList DragSessionSource::draggables() const
{
    if (const auto* drop = std::get_if<MenuBarDrop>(&value)) {
        return drop->draggables;
    }
    if (const auto* restore = std::get_if<Restore>(&value)) {
        return restore->draggables;
    }
    if (const auto* custom = std::get_if<Custom>(&value)) {
        return custom->draggables;
    }
    return {};
}

QString DragSessionSource::name() const
{
    static const char* const names[] = {"menuBarDrop", "restore", "custom", "gesture", "menuBar", "hotKey"};
    return QString::fromLatin1(names[value.index()]);
}

} // namespace Vantrope
