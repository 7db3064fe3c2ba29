// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "OperationsProvider.h"

#include <memory>
#include <optional>
#include <QString>
#include <variant>
#include <vector>

namespace Vantrope {

class Action;

// One row of the action menu, as a value: the Qt layer turns a list of them into a QMenu.
struct ActionMenuEntry {
    struct ActionRow {
        std::shared_ptr<Action> action;
        QString title;
        QString iconName;
        bool enabled = true;
        // A row that shows a mark, such as the shelf's current colour; none for plain rows.
        std::optional<bool> checked;
    };
    struct Separator {};
    struct Submenu {
        // The row that opens it, and the title of the menu it opens.
        QString title;
        QString iconName;
        QString menuTitle;
        std::vector<ActionMenuEntry> entries;
    };
    struct OperationRow {
        OperationsProvider::MenuItem item;
    };

    std::variant<ActionRow, Separator, Submenu, OperationRow> value;
};

// The whole menu of a shelf.
struct ActionsControllerMenu {
    QString title;
    std::vector<ActionMenuEntry> entries;
};

} // namespace Vantrope
