// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShelfCommandAction.h"

namespace Vantrope {

ShelfCommandAction::ShelfCommandAction(ActionCategory category, QString identifier, QString iconName,
                                       bool needsItems, Handler handler)
    : m_category(category)
    , m_identifier(std::move(identifier))
    , m_iconName(std::move(iconName))
    , m_needsItems(needsItems)
    , m_handler(std::move(handler))
{}

void ShelfCommandAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    if (m_handler) {
        m_handler(items);
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
