// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RemoveAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

RemoveAction::RemoveAction(Handler handler)
    : m_handler(std::move(handler))
{}

QString RemoveAction::identifier() const
{
    return QStringLiteral("drag_session_stack_remove");
}

QString RemoveAction::title() const
{
    return Localized("action.remove-from-stack.title", "Remove from Shelf");
}

bool RemoveAction::canPerform(const ActionItemList& items) const
{
    Q_UNUSED(items);
    return true;
}

void RemoveAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    if (m_handler) {
        m_handler(items);
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
