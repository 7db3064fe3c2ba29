// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ClearShelfAction.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

ClearShelfAction::ClearShelfAction(Handler handler)
    : m_handler(std::move(handler))
{}

QString ClearShelfAction::identifier() const
{
    return QStringLiteral("clear_shelf");
}

QString ClearShelfAction::title() const
{
    return Localized("action.clear-shelf.title", "Clear Shelf");
}

bool ClearShelfAction::canPerform(const ActionItemList& items) const
{
    return !items.isEmpty();
}

void ClearShelfAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    Q_UNUSED(items);
    if (m_handler) {
        m_handler();
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
