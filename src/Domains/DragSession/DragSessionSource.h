// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionLabel.h"
#include "Models/Draggable/Draggable.h"
#include "Screen.h"

#include <optional>
#include <QPointF>
#include <QString>
#include <variant>

namespace Vantrope {

// How a shelf came to be.
struct DragSessionSource {
    // Files dropped on the tray item or handed over by another program.
    struct MenuBarDrop {
        DraggableList draggables;
        std::optional<Screen> screen;
    };
    // A recent shelf opened again.
    struct Restore {
        QString identifier;
        DraggableList draggables;
        std::optional<DragSessionLabel> label;
    };
    // A place chosen by the caller (screenshots, the top drop zone).
    struct Custom {
        DraggableList draggables;
        QPointF location;
        Screen screen;
    };
    struct Gesture {};
    struct MenuBar {};
    struct HotKey {};

    using Value = std::variant<MenuBarDrop, Restore, Custom, Gesture, MenuBar, HotKey>;
    Value value;

    template<typename T>
    requires std::is_constructible_v<Value, T> DragSessionSource(T source)
        : value(std::move(source))
    {}

    template<typename T> bool is() const { return std::holds_alternative<T>(value); }
    // The items a source brings with it; empty for the sources without payload.
    DraggableList draggables() const;
    QString name() const;
};

} // namespace Vantrope
