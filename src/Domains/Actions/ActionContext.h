// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QImage>
#include <QObject>
#include <QPointer>

namespace Vantrope {

// What an action may need of the place its menu was opened from. Empty without a shelf window.
struct ActionContext {
    // The shelf window, for dialogs that belong to it; held weakly since the shelf may close first.
    QPointer<QObject> sourceWindow;
    // A picture of the first few files, for share targets that show one.
    std::optional<QImage> snapshot;
};

} // namespace Vantrope
