// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OpenFileAction.h"

#include "DesktopApplications.h"
#include "Domains/Actions/ActionIdentifiers.h"
#include "Libraries/Core/Localized.h"

#include <QFileInfo>
#include <QMimeDatabase>

namespace Vantrope {

QString OpenFileAction::identifier() const
{
    return ActionIdentifiers::openFile;
}

QString OpenFileAction::iconName() const
{
    QMutexLocker lock(&m_mutex);
    return m_sharedIconName.isEmpty() ? QStringLiteral("document-open") : m_sharedIconName;
}

QString OpenFileAction::title() const
{
    QMutexLocker lock(&m_mutex);
    if (m_sharedApplicationName.isEmpty()) {
        return Localized("action.open-file.title", "Open");
    }
    return Localized("action.open-file-with.title", "Open with %1").arg(m_sharedApplicationName);
}

bool OpenFileAction::canPerform(const ActionItemList& items) const
{
    QString sharedId;
    QString sharedName;
    bool shared = true;
    QStringList types;
    for (const ActionItem& item : items) {
        const QString type = DesktopApplications::mimeTypeOf(item.url());
        if (!types.contains(type)) {
            types.append(type);
        }
        const auto application = DesktopApplications::defaultFor(item.url());
        if (!application) {
            QMutexLocker lock(&m_mutex);
            m_sharedApplicationName.clear();
            m_sharedIconName.clear();
            return false;
        }
        if (sharedId.isEmpty() && shared) {
            sharedId = application->id;
            sharedName = application->name;
        } else if (application->id != sharedId) {
            shared = false;
        }
    }
    static const QMimeDatabase database;
    const QString icon = types.size() == 1 ? database.mimeTypeForName(types.first()).iconName() : QString();
    QMutexLocker lock(&m_mutex);
    m_sharedApplicationName = shared ? sharedName : QString();
    m_sharedIconName = icon;
    return !items.isEmpty();
}

void OpenFileAction::perform(const ActionItemList& items, ProgressHandler, Completion completion)
{
    for (const ActionItem& item : items) {
        const auto opened = DesktopApplications::launchDefault(item.url());
        if (!opened) {
            const QString name = QFileInfo(item.url().toLocalFile()).fileName();
            completion(std::unexpected(
                ActionError::underlying(Localized("action.open-file.error", "“%1” could not be opened: %2")
                                            .arg(name, opened.error().description))));
            return;
        }
    }
    completion(ActionResultContext{});
}

} // namespace Vantrope
