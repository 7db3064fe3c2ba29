// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

// Identifiers are stored (recent actions, instant actions), so they never change between versions.
namespace Vantrope::ActionIdentifiers {

inline const QString openFile = QStringLiteral("openfile");
inline const QString openWith = QStringLiteral("openfilewith");
inline const QString revealInFileManager = QStringLiteral("reveal_finder");
inline const QString preview = QStringLiteral("quick-look");
inline const QString copyToPasteboard = QStringLiteral("copy_to_pasteboard");
inline const QString compress = QStringLiteral("compress");
inline const QString addFromClipboard = QStringLiteral("add_from_clipboard");
inline const QString clearShelf = QStringLiteral("clear_shelf");
inline const QString dockShelf = QStringLiteral("dock_shelf");
inline const QString preferences = QStringLiteral("global_preferences");

// A share target's action is this prefix and the target's own id.
inline const QString sharingServicePrefix = QStringLiteral("sharingservice_");
inline const QString sharingServiceEmail = QStringLiteral("sharingservice_email");
inline const QString sharingServiceBluetooth = QStringLiteral("sharingservice_bluetooth");

} // namespace Vantrope::ActionIdentifiers
