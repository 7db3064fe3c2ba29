// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionMenuEntry.h"

#include <functional>

class QMenu;
class QWidget;

namespace Vantrope {

// Turns a shelf's action menu, worked out as a value, into a QMenu: rows with theme icons, separators,
// submenus and operation rows. A chosen row is handed to `choose` with the entry it came from.
class QtActionsMenu final {
public:
    using Choose = std::function<void(const ActionMenuEntry& entry)>;

    // The menu belongs to `parent`; it is not deleted when it closes.
    static QMenu* build(const ActionsControllerMenu& menu, QWidget* parent, const Choose& choose);

private:
    static void addEntries(QMenu& menu, const std::vector<ActionMenuEntry>& entries, const Choose& choose);
};

} // namespace Vantrope
