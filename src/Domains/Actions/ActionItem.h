// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionError.h"
#include "ActionItemType.h"

#include <expected>
#include <QList>
#include <QUrl>

namespace Vantrope {

// A file on disk as an action sees it.
class ActionItem final {
public:
    // Reads the file's size. A file that cannot be read, or a URL that names no local file, is an error.
    static std::expected<ActionItem, ActionError> fromFile(const QUrl& url);

    // By the path's extension alone, never by the contents.
    static ActionItemType typeOf(const QUrl& url);

    QUrl url() const { return m_url; }
    quint64 filesize() const { return m_filesize; }
    ActionItemType type() const { return m_type; }

    bool operator==(const ActionItem&) const = default;

private:
    ActionItem(const QUrl& url, quint64 filesize, ActionItemType type);

    QUrl m_url;
    quint64 m_filesize = 0;
    ActionItemType m_type = ActionItemType::other;
};

using ActionItemList = QList<ActionItem>;

QList<QUrl> actionItemUrls(const ActionItemList& items);

} // namespace Vantrope
