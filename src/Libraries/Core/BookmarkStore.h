// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "BookmarkURL.h"

#include <expected>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// A short persistent list of bookmarked locations, newest last, kept in the application folder under
// "bookmarks/<namespace>.json". Every call reads the file, so stores of one namespace agree.
class BookmarkStore final {
public:
    struct Error {
        enum class Kind {
            bookmarkFailed, // the location cannot be bookmarked
            noStorage,      // there is no application folder to keep the list in
            writeFailed,
        };
        Kind kind = Kind::writeFailed;
        QString reason;
        QString description() const;
    };

    BookmarkStore(const QString& nameSpace, int limit);

    // Adds `url` as the newest entry, replacing an entry for the same file and dropping the oldest
    // beyond the limit.
    std::expected<BookmarkURL, Error> addLocation(const QUrl& url);
    std::expected<void, Error> clear();

    // The locations that can be found now. Moved files are bookmarked afresh; missing ones are left
    // out but kept, since a drive that is not mounted may come back.
    QList<BookmarkURL> locations();

    // The entries as stored, without looking at the files.
    QList<BookmarkURL> bookmarks() const;

    // Empty when there is no application folder.
    QString filePath() const { return m_filePath; }

private:
    struct Stored {
        QList<BookmarkURL> entries;
        bool isCorrupt = false;
    };

    Stored read() const;
    std::expected<void, Error> write(const QList<BookmarkURL>& entries, bool setAsideFirst);

    QString m_filePath;
    int m_limit;
};

} // namespace Vantrope
