// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"
#include "ShelfCommandAction.h"

namespace Vantrope {

// Empties the shelf.
class ClearShelfAction final : public ShelfCommandAction {
public:
    explicit ClearShelfAction(std::function<void()> handler)
        : ShelfCommandAction(ActionCategory::supplementary, ActionIdentifiers::clearShelf,
                             QStringLiteral("edit-clear-all"), true,
                             [handler = std::move(handler)](const ActionItemList&) {
                                 if (handler) {
                                     handler();
                                 }
                             })
    {}

    QString title() const override { return Localized("action.clear-shelf.title", "Clear Shelf"); }
};

} // namespace Vantrope
