// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "LinuxDesktopActions.h"

#include "CopyToPasteboardAction.h"
#include "DesktopLogging.h"
#include "Domains/Actions/CompressAction.h"
#include "Domains/Actions/ZipActionArchiver.h"
#include "FileManagerReveal.h"
#include "OpenFileAction.h"
#include "OpenWithAction.h"
#include "QuickLookAction.h"
#include "RevealInFinderAction.h"
#include "ShareTargets.h"
#include "SharingServiceAction.h"

#include <algorithm>

namespace Vantrope {

LinuxDesktopActions::LinuxDesktopActions()
    : m_archiver(std::make_shared<ZipActionArchiver>())
{}

LinuxDesktopActions::~LinuxDesktopActions() = default;

ActionList LinuxDesktopActions::makeItemActions()
{
    const auto reveal = [](const QList<QUrl>& urls) {
        FileManagerReveal::revealInBackground(urls, [](const FileManagerReveal::Result& revealed) {
            if (!revealed) {
                qCWarning(lcDesktop).noquote()
                    << QStringLiteral("The archive could not be shown: ") + revealed.error().description;
            }
        });
    };
    return {
        std::make_shared<OpenFileAction>(),         std::make_shared<OpenWithAction>(),
        std::make_shared<RevealInFinderAction>(),   std::make_shared<QuickLookAction>(),
        std::make_shared<CopyToPasteboardAction>(), std::make_shared<CompressAction>(m_archiver, reveal),
    };
}

ActionList LinuxDesktopActions::makeShareActions(const QList<QUrl>& urls)
{
    const bool allLocal = !urls.isEmpty() && std::all_of(urls.begin(), urls.end(),
                                                         [](const QUrl& url) { return url.isLocalFile(); });
    if (!allLocal) {
        return {};
    }
    ActionList actions;
    for (ShareTarget& target : ShareTargets::available()) {
        actions.append(std::make_shared<SharingServiceAction>(std::move(target)));
    }
    return actions;
}

std::shared_ptr<ActionArchiver> LinuxDesktopActions::archiver()
{
    return m_archiver;
}

} // namespace Vantrope
