// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionLabel.h"
#include "Models/Draggable/Draggable.h"

#include <compare>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <QByteArray>
#include <QDateTime>
#include <QJsonValue>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

// A closed or changed shelf as the recent list keeps it: bookmarks of its files rather than the files,
// its label, and the order of its items. Shared between threads; the mutable parts take locks.
class PersistentDragSession final {
public:
    // Keyed by where each item was when the shelf was saved.
    using Bookmarks = QMap<QUrl, QByteArray>;
    // The bookmark a shelf already keeps for a file number, if any.
    using BookmarkLookup = std::function<std::optional<QByteArray>(quint64 systemFileNumber)>;

    struct DecodeError {
        QString reason;
    };

    PersistentDragSession(QString identifier, QDateTime date, std::optional<DragSessionLabel> label,
                          Bookmarks bookmarks, std::optional<QStringList> order);
    PersistentDragSession(const PersistentDragSession&) = delete;
    PersistentDragSession& operator=(const PersistentDragSession&) = delete;

    const QString& identifier() const { return m_identifier; }
    const QDateTime& date() const { return m_date; }
    const std::optional<DragSessionLabel>& label() const { return m_label; }
    bool isPinned() const { return m_label && m_label->pinned; }
    // The items' cache keys in display order.
    const std::optional<QStringList>& order() const { return m_order; }

    Bookmarks bookmarks() const;
    QList<QUrl> bookmarkUrls() const;

    // Absent until `validate()` ran.
    std::optional<DraggableList> draggables() const;

    // Rebuilds the items from the bookmarks. Entries whose file cannot be found any more are dropped
    // for good; files found elsewhere are bookmarked afresh. True when any item is left.
    bool validate();

    // The key an item is saved under: its file, or for an item with no file yet a made-up ".dat" file
    // in the temporary folder, so that every item has one.
    static QUrl bookmarkKey(const DraggableLocation& location);
    // Bookmarks for a shelf's items: the shelf's own where it keeps one, a fresh one otherwise. Items
    // whose file cannot be bookmarked are left out.
    static Bookmarks collectBookmarks(const DraggableList& items, const BookmarkLookup& storedBookmark);

    // The record exactly as ".drag_sessions" holds it: compact JSON with the keys in file order.
    QByteArray toJson() const;
    static std::expected<std::shared_ptr<PersistentDragSession>, DecodeError>
    fromJson(const QJsonValue& json);

    // Pinned sessions first, then the newest first.
    friend std::weak_ordering operator<=>(const PersistentDragSession& a, const PersistentDragSession& b);

private:
    static DraggablePtr restoreItem(const QUrl& key, const QByteArray& data);
    QByteArray encode(const Bookmarks& entries) const;

    const QString m_identifier;
    const QDateTime m_date;
    const std::optional<DragSessionLabel> m_label;
    const std::optional<QStringList> m_order;

    mutable std::mutex m_bookmarksLock;
    Bookmarks m_bookmarks;
    // The record changes only when bookmarks are dropped, while the whole list is written after every
    // change, so each record is encoded once.
    mutable QByteArray m_json;

    mutable std::mutex m_draggablesLock;
    std::optional<DraggableList> m_draggables;
};

using PersistentDragSessionPtr = std::shared_ptr<PersistentDragSession>;

} // namespace Vantrope
