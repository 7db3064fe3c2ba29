// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SharingServiceAction.h"

#include "DesktopLogging.h"
#include "Domains/Actions/ActionIdentifiers.h"

#include <algorithm>

namespace Vantrope {

SharingServiceAction::SharingServiceAction(ShareTarget target)
    : m_target(std::move(target))
{}

QString SharingServiceAction::identifier() const
{
    return ActionIdentifiers::sharingServicePrefix + m_target.identifier;
}

bool SharingServiceAction::canPerform(const ActionItemList& items) const
{
    return !items.isEmpty() && std::all_of(items.begin(), items.end(),
                                           [](const ActionItem& item) { return item.url().isLocalFile(); });
}

void SharingServiceAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    if (!m_target.send) {
        completion(std::unexpected(ActionError(ActionError::Kind::reserved)));
        return;
    }
    const QString target = m_target.identifier;
    m_target.send(actionItemUrls(items), [target, completion](const ShareTarget::Outcome& sent) {
        if (!sent) {
            qCWarning(lcDesktop).noquote()
                << QStringLiteral("Sharing to ") + target + QStringLiteral(" failed: ") + sent.error();
            completion(std::unexpected(ActionError::underlying(sent.error())));
            return;
        }
        completion(ActionResultContext{});
    });
}

} // namespace Vantrope
