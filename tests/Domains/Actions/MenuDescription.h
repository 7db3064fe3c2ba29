// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "Domains/Actions/ActionCategory.h"
#include "Domains/Actions/ActionMenuEntry.h"

#include <QStringList>

namespace Vantrope::Test {

// A menu as lines a test can compare: "action:id", "---", "operation:id", "Share[action:id,...]".
inline QStringList describeMenu(const std::vector<ActionMenuEntry>& entries)
{
    QStringList lines;
    for (const ActionMenuEntry& entry : entries) {
        if (const auto* row = std::get_if<ActionMenuEntry::ActionRow>(&entry.value)) {
            lines.append(QStringLiteral("action:") +
                         (row->action ? row->action->identifier() : QStringLiteral("?")));
        } else if (std::holds_alternative<ActionMenuEntry::Separator>(entry.value)) {
            lines.append(QStringLiteral("---"));
        } else if (const auto* submenu = std::get_if<ActionMenuEntry::Submenu>(&entry.value)) {
            lines.append(submenu->menuTitle + QLatin1Char('[') +
                         describeMenu(submenu->entries).join(QLatin1Char(',')) + QLatin1Char(']'));
        } else if (const auto* operation = std::get_if<ActionMenuEntry::OperationRow>(&entry.value)) {
            lines.append(QStringLiteral("operation:") + operation->item.identifier);
        }
    }
    return lines;
}

inline ActionCategory categoryNamed(const QString& name)
{
    for (const ActionCategory category :
         {ActionCategory::primary, ActionCategory::systemShare, ActionCategory::upload,
          ActionCategory::fileOperations, ActionCategory::shelf, ActionCategory::supplementary}) {
        if (actionCategoryName(category) == name) {
            return category;
        }
    }
    qFatal("unknown category");
}

} // namespace Vantrope::Test
