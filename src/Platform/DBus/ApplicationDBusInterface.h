// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope {

// The names under which a running Vantrope is found on the session bus.
class ApplicationDBusInterface final {
public:
    ApplicationDBusInterface() = delete;

    // The application id, as bus name and interface.
    static QString serviceName();
    static QString interfaceName();
    static QString objectPath();
    // "<interface>.Error.<name>"
    static QString errorName(const QString& name);
};

} // namespace Vantrope
