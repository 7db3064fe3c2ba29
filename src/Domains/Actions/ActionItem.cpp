// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionItem.h"

#include "Libraries/Core/Localized.h"

#include <cerrno>
#include <cstring>
#include <QFileInfo>
#include <sys/stat.h>

namespace Vantrope {

ActionItem::ActionItem(const QUrl& url, quint64 filesize, ActionItemType type)
    : m_url(url)
    , m_filesize(filesize)
    , m_type(type)
{}

std::expected<ActionItem, ActionError> ActionItem::fromFile(const QUrl& url)
{
    if (!url.isLocalFile()) {
        // Nothing to read a size from.
        return std::unexpected(ActionError(ActionError::Kind::reserved));
    }
    const QString path = url.toLocalFile();
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        return std::unexpected(
            ActionError::underlying(Localized("action.error.file-unreadable", "“%1” cannot be read: %2")
                                        .arg(QFileInfo(path).fileName(), reason)));
    }
    return ActionItem(url, quint64(status.st_size), typeOf(url));
}

ActionItemType ActionItem::typeOf(const QUrl& url)
{
    static const QStringList imageExtensions = {
        QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("png"),
        QStringLiteral("gif"), QStringLiteral("tiff"),
    };
    const QString fileName = url.fileName();
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0) {
        return ActionItemType::other;
    }
    const QString extension = fileName.mid(dot + 1).toLower();
    return imageExtensions.contains(extension) ? ActionItemType::image : ActionItemType::other;
}

QList<QUrl> actionItemUrls(const ActionItemList& items)
{
    QList<QUrl> urls;
    urls.reserve(items.size());
    for (const ActionItem& item : items) {
        urls.append(item.url());
    }
    return urls;
}

} // namespace Vantrope
