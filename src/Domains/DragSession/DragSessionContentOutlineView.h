// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionMenuEntry.h"
#include "Models/Draggable/Draggable.h"

#include <functional>
#include <optional>
#include <QString>

namespace Vantrope {

// What the item list's logic asks of the panel that shows it.
class DragSessionContentOutlineView {
public:
    virtual ~DragSessionContentOutlineView() = default;

    // A one-line editor over the item's row, filled with `text`. `done` runs once: with the text on
    // Enter, with none when the user gives up.
    virtual void editName(const DraggablePtr& item, const QString& text,
                          std::function<void(const std::optional<QString>& text)> done) = 0;
    // The action menu for the selection, now that it is ready.
    virtual void showActionsMenu(const ActionsControllerMenu& menu) = 0;
    // The list is closed by its logic (every item is gone): the panel goes.
    virtual void closeOutline() = 0;
};

} // namespace Vantrope
