// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionCategory.h"

namespace Vantrope {

QString actionCategoryName(ActionCategory category)
{
    switch (category) {
    case ActionCategory::primary:
        return QStringLiteral("primary");
    case ActionCategory::systemShare:
        return QStringLiteral("systemShare");
    case ActionCategory::upload:
        return QStringLiteral("upload");
    case ActionCategory::fileOperations:
        return QStringLiteral("fileOperations");
    case ActionCategory::shelf:
        return QStringLiteral("shelf");
    case ActionCategory::supplementary:
        return QStringLiteral("supplementary");
    }
    return QString();
}

} // namespace Vantrope
