// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <variant>

namespace Vantrope {

enum class ShareHistoryItemType {
    vantropeCloud,
    dropbox,
    aws,
    icloud,
    googleDrive,
    microsoftOneDrive,
    imgur,
    unknown
};

// What deleting an upload at its service needs.
struct ShareHistoryItemVantropeCloudContext {
    QString identifier;
    std::optional<QString> token;
    std::optional<QDateTime> expirationDate;
    bool operator==(const ShareHistoryItemVantropeCloudContext&) const = default;
};

struct ShareHistoryItemAmazonContext {
    QString path;
    QString bucket;
    QString region;
    bool operator==(const ShareHistoryItemAmazonContext&) const = default;
};

struct ShareHistoryItemImgurContext {
    QString deleteHash;
    bool isAlbum = false;
    bool operator==(const ShareHistoryItemImgurContext&) const = default;
};

using ShareHistoryItemContext = std::variant<ShareHistoryItemVantropeCloudContext,
                                             ShareHistoryItemAmazonContext, ShareHistoryItemImgurContext>;

// One link an upload made.
struct ShareHistoryItem {
    ShareHistoryItemType type = ShareHistoryItemType::unknown;
    QString title;
    QUrl url;
    QDateTime date;
    std::optional<ShareHistoryItemContext> context;

    static QString rawValue(ShareHistoryItemType type);
    // Unknown strings give `unknown`.
    static ShareHistoryItemType typeFromRawValue(const QString& raw);

    // "type", "title", "url", "date" and, when there is one, "context" as {"aws": {"_0": {...}}}.
    QJsonObject toJson() const;
    // None when a required key is missing or of the wrong type. Entries of old versions that carry
    // "cloudIdentifier" get that as their context; a context of an unknown shape is dropped, not the item.
    static std::optional<ShareHistoryItem> fromJson(const QJsonObject& object);

    bool operator==(const ShareHistoryItem&) const = default;
};

} // namespace Vantrope
