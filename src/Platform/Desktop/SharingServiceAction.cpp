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
    const auto sent = m_target.send ? m_target.send(actionItemUrls(items))
                                    : std::expected<void, QString>(std::unexpected(QString()));
    if (!sent) {
        qCWarning(lcDesktop).noquote() << QStringLiteral("Sharing to ") + m_target.identifier +
                                              QStringLiteral(" failed: ") + sent.error();
        completion(std::unexpected(ActionError::underlying(sent.error())));
        return;
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
