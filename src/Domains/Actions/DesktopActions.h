// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"
#include "ActionArchiver.h"

#include <memory>
#include <QList>
#include <QUrl>

namespace Vantrope {

// The actions that need the desktop (launching applications, the file manager, the clipboard, share
// targets), which the program supplies to every shelf. The shelf's own actions (rename, remove, clear...)
// come from the shelf's coordinator.
class DesktopActions {
public:
    virtual ~DesktopActions() = default;

    // New instances for one shelf's controller, in menu order: open, open with, show in the file
    // manager, preview, copy to the clipboard, compress.
    virtual ActionList makeItemActions() = 0;
    // The share targets that can take these files right now. Called on a worker thread; may take its time
    // (it may ask other programs over D-Bus).
    virtual ActionList makeShareActions(const QList<QUrl>& urls) = 0;
    // What makes the zip archives of the actions that need one file.
    virtual std::shared_ptr<ActionArchiver> archiver() = 0;
};

} // namespace Vantrope
