// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragError.h"
#include "Models/Draggable/Draggable.h"

#include <optional>

namespace Vantrope {

// Rules on a drop: absent means the shelf takes it.
class DragSessionDropValidator final {
public:
    static std::optional<DragError> validateDrop(const DraggableList& shelfItems,
                                                 const DraggableList& droppedItems);
};

} // namespace Vantrope
