// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileWatcher.h"

namespace Vantrope {

QString FileWatcher::Error::description() const
{
    return QStringLiteral("Cannot watch %1: %2").arg(path, reason);
}

} // namespace Vantrope
