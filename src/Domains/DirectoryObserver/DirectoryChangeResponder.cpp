// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DirectoryChangeResponder.h"

namespace Vantrope {

QList<DirectoryChangeResponder*> DirectoryChangeResponder::descendants() const
{
    QList<DirectoryChangeResponder*> result;
    const QList<DirectoryChangeResponder*> children = childResponders();
    for (DirectoryChangeResponder* child : children) {
        result.append(child->descendants());
        result.append(child);
    }
    return result;
}

} // namespace Vantrope
