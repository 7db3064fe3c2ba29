// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "MoveToNewShelfAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

MoveToNewShelfAction::MoveToNewShelfAction(Context context, Handler handler)
    : m_context(context)
    , m_handler(std::move(handler))
{}

QString MoveToNewShelfAction::identifier() const
{
    return m_context == Context::move ? QStringLiteral("drag_session_stack_add_to_new_shelf")
                                      : QStringLiteral("drag_session_stack_copy_to_new_shelf");
}

QString MoveToNewShelfAction::title() const
{
    return m_context == Context::move ? Localized("action.move-to-new-shelf", "Move to New Shelf")
                                      : Localized("action.copy-to-new-shelf", "Copy to New Shelf");
}

bool MoveToNewShelfAction::canPerform(const ActionItemList& items) const
{
    return !items.isEmpty();
}

void MoveToNewShelfAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    if (m_handler) {
        m_handler(m_context, items);
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
