// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"

#include <functional>
#include <optional>
#include <QPixmap>

class QObject;

namespace Vantrope {

// Drags shelf items out to other programs and works out whether their files went: the pile and the item
// list drag the same way.
class OutboundDrag final {
public:
    // Called once, when it is known whether the target took the files away (`moved`).
    using Decided = std::function<void(bool moved)>;

    OutboundDrag() = delete;

    // Runs the drag in its own event loop, from `source`. Empty when the items have nothing to offer yet;
    // otherwise the action the target answered, `Qt::IgnoreAction` for a cancel (then `decided` is never
    // called). `decided` is not called once `context` is gone.
    static std::optional<Qt::DropAction> exec(QObject* source, const DraggableList& draggables,
                                              const QPixmap& pixmap, bool copyOnly, QObject* context,
                                              const Decided& decided);
};

} // namespace Vantrope
