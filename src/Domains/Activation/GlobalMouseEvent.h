// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QFlags>
#include <QPointF>
#include <QtGlobal>

namespace Vantrope {

// Modifier keys as bits; the values are the ones the stored trigger key settings stand for.
enum class EventModifierFlag : quint32 {
    capsLock = 0x10000,
    shift = 0x20000,
    control = 0x40000,
    option = 0x80000,   // Alt
    command = 0x100000, // Super
};
Q_DECLARE_FLAGS(EventModifierFlags, EventModifierFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(EventModifierFlags)

// A mouse event of any application on the display, as a global monitor reports it.
struct GlobalMouseEvent {
    // The values double as the bits of a monitor's event mask.
    enum class Type : quint32 {
        leftMouseUp = 1u << 2,
        leftMouseDragged = 1u << 6,
    };
    Q_DECLARE_FLAGS(Types, Type)

    Type type = Type::leftMouseDragged;
    // A screen position in points with a bottom-left origin.
    QPointF locationInWindow;
    // The window the drag began in; 0 when it began over no window.
    quint64 windowNumber = 0;
    EventModifierFlags modifierFlags;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(GlobalMouseEvent::Types)

} // namespace Vantrope
