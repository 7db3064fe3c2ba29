// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShareHistoryItem.h"

#include <array>

namespace Vantrope {

namespace {

constexpr std::array<std::pair<ShareHistoryItemType, const char*>, 8> kTypes{{
    {ShareHistoryItemType::vantropeCloud, "vantropeCloud"},
    {ShareHistoryItemType::dropbox, "dropbox"},
    {ShareHistoryItemType::aws, "aws"},
    {ShareHistoryItemType::icloud, "icloud"},
    {ShareHistoryItemType::googleDrive, "googleDrive"},
    {ShareHistoryItemType::microsoftOneDrive, "microsoftOneDrive"},
    {ShareHistoryItemType::imgur, "imgur"},
    {ShareHistoryItemType::unknown, "unknown"},
}};

QString isoDate(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

std::optional<QDateTime> parseDate(const QJsonValue& value)
{
    if (!value.isString()) {
        return std::nullopt;
    }
    QDateTime date = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    if (!date.isValid()) {
        return std::nullopt;
    }
    return date.toUTC();
}

QJsonObject contextToJson(const ShareHistoryItemContext& context)
{
    return std::visit(
        [](const auto& value) -> QJsonObject {
            using T = std::decay_t<decltype(value)>;
            QJsonObject fields;
            QString name;
            if constexpr (std::is_same_v<T, ShareHistoryItemVantropeCloudContext>) {
                name = QStringLiteral("vantropeCloud");
                fields.insert(QStringLiteral("identifier"), value.identifier);
                if (value.token) {
                    fields.insert(QStringLiteral("token"), *value.token);
                }
                if (value.expirationDate) {
                    fields.insert(QStringLiteral("expirationDate"), isoDate(*value.expirationDate));
                }
            } else if constexpr (std::is_same_v<T, ShareHistoryItemAmazonContext>) {
                name = QStringLiteral("aws");
                fields.insert(QStringLiteral("path"), value.path);
                fields.insert(QStringLiteral("bucket"), value.bucket);
                fields.insert(QStringLiteral("region"), value.region);
            } else {
                name = QStringLiteral("imgur");
                fields.insert(QStringLiteral("deleteHash"), value.deleteHash);
                fields.insert(QStringLiteral("isAlbum"), value.isAlbum);
            }
            return QJsonObject{{name, QJsonObject{{QStringLiteral("_0"), fields}}}};
        },
        context);
}

std::optional<ShareHistoryItemContext> contextFromJson(const QJsonValue& value)
{
    if (!value.isObject() || value.toObject().size() != 1) {
        return std::nullopt;
    }
    const QJsonObject object = value.toObject();
    const QString name = object.begin().key();
    const QJsonValue inner = object.begin().value().toObject().value(QStringLiteral("_0"));
    if (!inner.isObject()) {
        return std::nullopt;
    }
    const QJsonObject fields = inner.toObject();
    const auto string = [&](const char* key) -> std::optional<QString> {
        const QJsonValue field = fields.value(QLatin1String(key));
        return field.isString() ? std::optional(field.toString()) : std::nullopt;
    };
    if (name == QLatin1String("aws")) {
        const auto path = string("path");
        const auto bucket = string("bucket");
        const auto region = string("region");
        if (!path || !bucket || !region) {
            return std::nullopt;
        }
        return ShareHistoryItemAmazonContext{*path, *bucket, *region};
    }
    if (name == QLatin1String("imgur")) {
        const auto deleteHash = string("deleteHash");
        const QJsonValue isAlbum = fields.value(QStringLiteral("isAlbum"));
        if (!deleteHash || !isAlbum.isBool()) {
            return std::nullopt;
        }
        return ShareHistoryItemImgurContext{*deleteHash, isAlbum.toBool()};
    }
    if (name == QLatin1String("vantropeCloud")) {
        const auto identifier = string("identifier");
        if (!identifier) {
            return std::nullopt;
        }
        return ShareHistoryItemVantropeCloudContext{
            *identifier, string("token"), parseDate(fields.value(QStringLiteral("expirationDate")))};
    }
    return std::nullopt;
}

} // namespace

QString ShareHistoryItem::rawValue(ShareHistoryItemType type)
{
    for (const auto& [candidate, raw] : kTypes) {
        if (candidate == type) {
            return QString::fromLatin1(raw);
        }
    }
    return QStringLiteral("unknown");
}

ShareHistoryItemType ShareHistoryItem::typeFromRawValue(const QString& raw)
{
    for (const auto& [type, candidate] : kTypes) {
        if (raw == QLatin1String(candidate)) {
            return type;
        }
    }
    return ShareHistoryItemType::unknown;
}

QJsonObject ShareHistoryItem::toJson() const
{
    QJsonObject object{{QStringLiteral("type"), rawValue(type)},
                       {QStringLiteral("title"), title},
                       {QStringLiteral("url"), url.toString(QUrl::FullyEncoded)},
                       {QStringLiteral("date"), isoDate(date)}};
    if (context) {
        object.insert(QStringLiteral("context"), contextToJson(*context));
    }
    return object;
}

std::optional<ShareHistoryItem> ShareHistoryItem::fromJson(const QJsonObject& object)
{
    const QJsonValue type = object.value(QStringLiteral("type"));
    const QJsonValue title = object.value(QStringLiteral("title"));
    const QJsonValue url = object.value(QStringLiteral("url"));
    const std::optional<QDateTime> date = parseDate(object.value(QStringLiteral("date")));
    if (!type.isString() || !title.isString() || !url.isString() || !date) {
        return std::nullopt;
    }
    ShareHistoryItem item;
    item.type = typeFromRawValue(type.toString());
    item.title = title.toString();
    item.url = QUrl(url.toString(), QUrl::StrictMode);
    if (!item.url.isValid()) {
        return std::nullopt;
    }
    item.date = *date;
    const QJsonValue cloudIdentifier = object.value(QStringLiteral("cloudIdentifier"));
    if (cloudIdentifier.isString()) {
        const QJsonValue token = object.value(QStringLiteral("cloudToken"));
        item.context = ShareHistoryItemVantropeCloudContext{
            cloudIdentifier.toString(), token.isString() ? std::optional(token.toString()) : std::nullopt,
            parseDate(object.value(QStringLiteral("cloudExpirationDate")))};
    } else {
        item.context = contextFromJson(object.value(QStringLiteral("context")));
    }
    return item;
}

} // namespace Vantrope
