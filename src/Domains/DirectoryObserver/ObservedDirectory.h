// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DirectoryObserverFilter.h"

#include <expected>
#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// A watched folder as the user set it up, and as ".observed_directories" stores it.
struct ObservedDirectory {
    struct Options {
        // New items go to the shelf this folder opened, while that shelf is still open.
        bool appendsToInitialShelf = true;
        bool rulesCaseSensitive = false;
        bool observesNestedDirectories = false;
        bool operator==(const Options&) const = default;
    };

    struct Lifecycle {
        // Access to the folder was obtained in this run.
        bool isSecureScoped = false;
        // Paused by the user.
        bool isStopped = false;
        bool operator==(const Lifecycle&) const = default;
    };

    struct Error {
        QString reason;
        QString description() const;
    };

    // An upper-case UUID, given once; the store's key.
    QString identifier;
    QUrl url;
    QByteArray bookmarkData;
    // Rules from before rules had operators; every item written now has none.
    QList<DirectoryObserverItemMatcher> matchers;
    QList<DirectoryObserverFilter> filters;
    Options options;
    Lifecycle lifecycle;

    // A new folder with a fresh identifier, no rules and the default options.
    static ObservedDirectory make(const QUrl& url, const QByteArray& bookmarkData);

    QJsonObject toJson() const;
    // "matchers", "options" and "lifecycle" are required; "filters" may be missing.
    static std::expected<ObservedDirectory, Error> fromJson(const QJsonValue& value);

    bool operator==(const ObservedDirectory&) const = default;
};

QDebug operator<<(QDebug debug, const ObservedDirectory& directory);

} // namespace Vantrope
