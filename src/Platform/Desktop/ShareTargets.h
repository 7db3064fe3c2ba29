// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ShareTarget.h"

#include <optional>

namespace Vantrope {

// Finds the share targets this desktop has right now: mail through xdg-email, each paired and reachable
// KDE Connect device, Bluetooth through bluetooth-sendto or bluedevil-sendfile. Blocks on D-Bus for a
// moment: call it off the main thread.
class ShareTargets final {
public:
    static QList<ShareTarget> available();

    static std::optional<ShareTarget> email();
    static QList<ShareTarget> kdeConnectDevices();
    static std::optional<ShareTarget> bluetooth();

    static inline const QString kdeConnectService = QStringLiteral("org.kde.kdeconnect");
};

} // namespace Vantrope
