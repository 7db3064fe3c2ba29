// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QUrl>
#include <variant>

namespace Vantrope {

// Work that arrived before the program had finished launching; it runs once launching is done.
struct PendingAction {
    // Files handed over on the command line that started the program.
    struct ShowDragSession {
        QList<QUrl> urls;
    };

    std::variant<ShowDragSession> value;
};

} // namespace Vantrope
