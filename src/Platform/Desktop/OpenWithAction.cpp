// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OpenWithAction.h"

#include "DesktopLogging.h"
#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"
#include "OpenWithApplicationAction.h"

namespace Vantrope {

std::optional<ActionMenuEntry>
OpenWithActionMenuProvider::makeMenuEntry(const std::shared_ptr<Action>& action,
                                          const ActionItemList& items) const
{
    if (!action) {
        return std::nullopt;
    }
    ActionMenuEntry::Submenu submenu;
    submenu.title = action->title();
    submenu.iconName = action->iconName();
    submenu.menuTitle = action->title();
    for (const DesktopApplication& application : DesktopApplications::commonTo(actionItemUrls(items))) {
        if (application.name.isEmpty()) {
            qCWarning(lcDesktop).noquote()
                << QStringLiteral("Failed to obtain application name for ") + application.id;
            continue;
        }
        submenu.entries.push_back(ActionMenuEntry{
            ActionMenuEntry::ActionRow{std::make_shared<OpenWithApplicationAction>(application),
                                       application.name, application.iconName, true}});
    }
    if (submenu.entries.empty()) {
        return std::nullopt;
    }
    return ActionMenuEntry{std::move(submenu)};
}

QString OpenWithAction::identifier() const
{
    return ActionIdentifiers::openWith;
}

QString OpenWithAction::iconName() const
{
    return QStringLiteral("document-open");
}

QString OpenWithAction::title() const
{
    return Localized("action.open-with-short.title", "Open With");
}

bool OpenWithAction::canPerform(const ActionItemList& items) const
{
    return !items.isEmpty() && !DesktopApplications::commonTo(actionItemUrls(items)).isEmpty();
}

void OpenWithAction::perform(const ActionItemList& items, ProgressHandler progress, Completion completion)
{
    const QList<DesktopApplication> applications = DesktopApplications::commonTo(actionItemUrls(items));
    if (applications.isEmpty()) {
        completion(std::unexpected(ActionError(ActionError::Kind::failedPreparation)));
        return;
    }
    OpenWithApplicationAction(applications.first())
        .perform(items, std::move(progress), std::move(completion));
}

} // namespace Vantrope
