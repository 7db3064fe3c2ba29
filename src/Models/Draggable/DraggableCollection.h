// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"

#include <expected>
#include <functional>

namespace Vantrope::DraggableCollection {

using TrashCompletion = std::function<void(const std::expected<void, DraggableError>&)>;

// Moves the files of the items to the Trash. Items that cannot be resolved are logged and left out.
// The completion runs on the main queue once, whether or not every file could be moved.
void moveToTrash(const DraggableList& draggables, TrashCompletion completion);

} // namespace Vantrope::DraggableCollection
