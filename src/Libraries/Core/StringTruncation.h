// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

enum class TruncationPosition { head, middle, tail };

// Shortens text to at most `limit` characters (the leader included) so titles fit menus and labels.
// Never splits a surrogate pair.
QString truncated(const QString& text, qsizetype limit,
                  TruncationPosition position = TruncationPosition::tail,
                  const QString& leader = QStringLiteral("…"));

// The ellipsis that ends a menu title whose item opens a dialog.
QString menuItemEllipsis();

} // namespace Vantrope
