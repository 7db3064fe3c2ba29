// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OpenWithApplicationAction.h"

#include "DesktopLogging.h"
#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"

namespace Vantrope {

OpenWithApplicationAction::OpenWithApplicationAction(DesktopApplication application)
    : m_application(std::move(application))
{}

QString OpenWithApplicationAction::identifier() const
{
    return ActionIdentifiers::openWith + QLatin1Char('.') + m_application.id;
}

void OpenWithApplicationAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    const auto launched = DesktopApplications::launch(m_application.id, actionItemUrls(items));
    if (!launched) {
        qCWarning(lcDesktop).noquote()
            << QStringLiteral("Failed to open application with error ") + launched.error().description;
        completion(ActionResultContext{ActionResultContext::Message{
            Localized("action_error_openfilewith", "%1 could not open the files").arg(m_application.name)}});
        return;
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
