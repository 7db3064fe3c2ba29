// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QuickLookAction.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"
#include "PreviewWindow.h"

namespace Vantrope {

QuickLookAction::~QuickLookAction()
{
    // The window belongs to the user once open: it stays until they close it.
}

QString QuickLookAction::identifier() const
{
    return ActionIdentifiers::preview;
}

QString QuickLookAction::iconName() const
{
    return QStringLiteral("document-preview");
}

QString QuickLookAction::title() const
{
    return Localized("action.quick-look.title", "Preview");
}

void QuickLookAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    cancel();
    m_window = new PreviewWindow(actionItemUrls(items));
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
    completion(ActionResultContext{});
}

void QuickLookAction::cancel()
{
    if (m_window) {
        m_window->close();
    }
    m_window.clear();
}

} // namespace Vantrope
