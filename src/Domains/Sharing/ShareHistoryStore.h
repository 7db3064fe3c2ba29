// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ShareHistoryItem.h"

#include <functional>
#include <QList>
#include <QObject>

namespace Vantrope {

// The links uploads made, newest first, at most 200, kept in ".share_history" in the application data
// folder as a JSON array. Main thread. The file is replaced atomically; one that cannot be read is set
// aside before the next save, so that what it held can still be recovered.
class ShareHistoryStore final : public QObject {
    Q_OBJECT
public:
    static constexpr qsizetype maxNumberOfItems = 200;

    // An empty path means ".share_history" in the application data folder. Loads at once.
    explicit ShareHistoryStore(const QString& filePath = QString(), QObject* parent = nullptr);

    const QList<ShareHistoryItem>& items() const { return m_items; }
    const QString& filePath() const { return m_filePath; }

    // Newest first; the oldest goes when the list is full.
    void add(const ShareHistoryItem& item);
    // The first equal item; false, with nothing written or signalled, when there is none.
    bool remove(const ShareHistoryItem& item);
    // Answers how many went.
    qsizetype removeIf(const std::function<bool(const ShareHistoryItem&)>& predicate);

    static QString defaultFilePath();

Q_SIGNALS:
    // Queued: after every change, once control is back at the event loop.
    void itemsChanged();

private:
    void load();
    void save();
    void changed();

    QString m_filePath;
    QList<ShareHistoryItem> m_items;
    // The file could not be read: it is set aside before it is overwritten.
    bool m_fileUnreadable = false;
};

} // namespace Vantrope
