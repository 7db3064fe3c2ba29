// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Draggable.h"
#include "Libraries/Core/ThreadSafe.h"

#include <mutex>
#include <QByteArray>
#include <QStringList>

namespace Vantrope {

struct DraggableContext;

// A file or folder that already exists on disk.
class DraggableFile final : public Draggable {
    struct Tag {};

public:
    // The file was restored from these bookmark bytes, saved under `sourceUrl` and found at `url`.
    struct Bookmark {
        QUrl sourceUrl;
        QUrl url;
        QByteArray data;
        friend bool operator==(const Bookmark&, const Bookmark&) = default;
    };

    static QStringList readableTypes();
    static std::shared_ptr<DraggableFile> fromPasteboard(const PasteboardItem& item, const QString& type,
                                                         const DraggableContext& context);
    // The way the rest of the program makes file items. Null when `url` is no local file URL.
    static std::shared_ptr<DraggableFile> make(const QUrl& url,
                                               std::optional<Bookmark> bookmark = std::nullopt);

    // The local file a pasteboard string names, percent escapes removed and the path cleaned. Absent
    // (and logged) for escapes that do not decode to UTF-8, other schemes, relative paths and NULs.
    static std::optional<QUrl> urlFromPropertyList(const QString& propertyList);
    // The identity of a local file: its cleaned path as an encoded URL string.
    static QString standardizedKey(const QUrl& fileUrl);

    DraggableFile(Tag, const QUrl& url);
    ~DraggableFile() override;

    std::optional<QUrl> url() const override { return m_url; }
    std::optional<quint64> systemFileNumber() const override { return m_systemFileNumber; }
    QString cacheKey() const override { return m_cacheKey; }
    QImage image(bool iconOnly, const QSize& size) const override;
    void resolveUrl(ResolveCompletion completion) override;
    PasteboardItem pasteboardItem() const override;
    QString description() const override;

    // Bytes at creation; 0 when the file could not be examined.
    qint64 size() const { return m_size; }

    std::optional<Bookmark> bookmark() const { return m_bookmark.value(); }
    void setBookmark(std::optional<Bookmark> bookmark) { m_bookmark.setValue(std::move(bookmark)); }

    // Called when a shelf starts with this restored item: counts it as a holder of its file's access.
    // Does nothing without a bookmark, or when this item already holds the access.
    void startAccessingBookmark();
    // Gives up what `startAccessingBookmark` took; the destructor calls it.
    void releaseAccess();
    bool hasAccessedBookmark() const;
    // Live items holding the access of this item's URL, in any shelf.
    int accessCount() const;

private:
    const QUrl m_url;
    const QString m_cacheKey;
    qint64 m_size = 0;
    std::optional<quint64> m_systemFileNumber;
    ThreadSafe<std::optional<Bookmark>> m_bookmark;

    mutable std::mutex m_accessMutex;
    // The bookmark location whose access this item counts in, so that a later `setBookmark` cannot
    // make it close a scope it did not open.
    std::optional<QUrl> m_accessedBookmarkUrl;
};

} // namespace Vantrope
