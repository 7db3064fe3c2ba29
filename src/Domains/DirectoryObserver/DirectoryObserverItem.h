// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QDateTime>
#include <QDebug>
#include <QString>
#include <QUrl>

namespace Vantrope {

// One entry of a watched directory as a change pass saw it (`DirectoryObserver::Item`).
struct DirectoryObserverItem {
    QUrl url;
    // The last path component as the file system spells it.
    QString name;
    QDateTime modificationDate;
    quint64 size = 0;
    // The inode number; the hash of `name` when the entry could not be examined.
    qint64 systemNumber = 0;
    // The file carries a download's provenance attributes.
    bool isQuarantined = false;

    // Reads the attributes now. An entry that is gone or unreadable still yields an item: size 0, the
    // current time, the name's hash, not quarantined.
    static DirectoryObserverItem fromUrl(const QUrl& url);

    // Stands in for the inode number where there is none; stable within one run only.
    static qint64 fallbackSystemNumber(const QString& name);

    // The part of the last path component after its last dot; empty for ".profile", "Makefile" and "a.".
    static QString pathExtension(const QUrl& url);

    bool operator==(const DirectoryObserverItem&) const = default;
};

QDebug operator<<(QDebug debug, const DirectoryObserverItem& item);

} // namespace Vantrope
