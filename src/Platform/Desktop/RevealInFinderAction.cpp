// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "RevealInFinderAction.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "FileManagerReveal.h"
#include "Libraries/Core/Localized.h"

#include <algorithm>

namespace Vantrope {

QString RevealInFinderAction::identifier() const
{
    return ActionIdentifiers::revealInFileManager;
}

QString RevealInFinderAction::iconName() const
{
    return QStringLiteral("system-file-manager");
}

QString RevealInFinderAction::title() const
{
    return Localized("action.reveal-in-finder.title", "Show in File Manager");
}

bool RevealInFinderAction::canPerform(const ActionItemList& items) const
{
    if (items.isEmpty()) {
        return false;
    }
    return std::all_of(items.begin(), items.end(),
                       [](const ActionItem& item) { return item.url().isLocalFile(); });
}

void RevealInFinderAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    // The shelf hears of the end after this call has returned, as with every other action.
    FileManagerReveal::revealInBackground(
        actionItemUrls(items), [completion](const FileManagerReveal::Result& revealed) {
            completion(revealed
                           ? Result(ActionResultContext{})
                           : Result(std::unexpected(ActionError::underlying(revealed.error().description))));
        });
}

} // namespace Vantrope
