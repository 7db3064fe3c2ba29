// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AddFromClipboardAction.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"

namespace Vantrope {

AddFromClipboardAction::AddFromClipboardAction(bool hasPasteableItems, Handler handler)
    : m_hasPasteableItems(hasPasteableItems)
    , m_handler(std::move(handler))
{}

QString AddFromClipboardAction::identifier() const
{
    return ActionIdentifiers::addFromClipboard;
}

QString AddFromClipboardAction::title() const
{
    return Localized("action.add-from-clipboard.title", "Add from Clipboard");
}

bool AddFromClipboardAction::canPerform(const ActionItemList&) const
{
    return m_hasPasteableItems;
}

void AddFromClipboardAction::perform(const ActionItemList&, ProgressHandler, Completion completion)
{
    const int added = m_handler ? m_handler() : 0;
    if (added == 0) {
        completion(ActionResultContext{ActionResultContext::Message{
            Localized("action.add-from-clipboard.nothing-new", "The clipboard holds nothing new.")}});
        return;
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
