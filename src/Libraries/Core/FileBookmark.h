// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <optional>
#include <QByteArray>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Opaque bytes naming a file by identity (device, inode, birth time) as well as by path, so that a
// file set down on the shelf can be found again after it was renamed, moved nearby or trashed.
class FileBookmark final {
public:
    struct Error {
        enum class Kind {
            invalidData, // not bookmark bytes, damaged, or written by a newer format
            notFound,    // the file is gone, or moved beyond the places a resolve looks at
            unreadable,  // the file or its folder cannot be examined
        };
        Kind kind = Kind::invalidData;
        QString path;
        QString reason;
        QString description() const;
    };

    struct Resolution {
        QUrl url;
        // The file was found away from where it was bookmarked; callers should bookmark it afresh.
        bool isStale = false;
    };

    struct Timestamp {
        qint64 seconds = 0;
        quint32 nanoseconds = 0;
        friend bool operator==(const Timestamp&, const Timestamp&) = default;
    };

    // What the bytes record.
    struct Contents {
        QString path;
        quint64 device = 0;
        quint64 inode = 0;
        std::optional<Timestamp> birthTime; // absent where the file system does not keep one
        qint64 size = 0;
        Timestamp modificationTime;

        // Inode numbers are reused once a file is deleted, so the birth time decides when both
        // sides know it. A device number may change when a drive is mounted again; a matching
        // birth time is then taken as proof enough.
        bool isSameFile(const Contents& other) const;
    };

    static std::expected<QByteArray, Error> create(const QUrl& fileUrl);
    static std::expected<Resolution, Error> resolve(const QByteArray& data);
    static std::expected<Contents, Error> decode(const QByteArray& data);
};

} // namespace Vantrope
