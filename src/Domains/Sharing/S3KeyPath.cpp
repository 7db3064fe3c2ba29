// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "S3KeyPath.h"

#include "Libraries/Core/Localized.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Vantrope {

QString PathTokenFactory::resolve(const TokenizedPath& path) const
{
    QString key;
    for (const PathToken& token : path) {
        switch (token.kind) {
        case PathToken::Kind::element:
            key += token.text;
            break;
        case PathToken::Kind::date:
            key += date.toString(QStringLiteral("yyyyMMddHHmmss"));
            break;
        case PathToken::Kind::uuid:
            key += uuid;
            break;
        case PathToken::Kind::filename:
            key += fileName;
            break;
        }
    }
    if (key.endsWith(QLatin1Char('/'))) {
        key.chop(1);
    }
    return key;
}

namespace S3KeyPath {

TokenizedPath defaultPath()
{
    return {PathToken::element(QStringLiteral("Vantrope/")), PathToken::uuid(),
            PathToken::element(QStringLiteral("/")), PathToken::filename()};
}

QByteArray encode(const TokenizedPath& path)
{
    QJsonArray array;
    for (const PathToken& token : path) {
        switch (token.kind) {
        case PathToken::Kind::element:
            array.append(
                QJsonObject{{QStringLiteral("element"), QJsonObject{{QStringLiteral("_0"), token.text}}}});
            break;
        case PathToken::Kind::date:
            array.append(QJsonObject{{QStringLiteral("date"), QJsonObject()}});
            break;
        case PathToken::Kind::uuid:
            array.append(QJsonObject{{QStringLiteral("uuid"), QJsonObject()}});
            break;
        case PathToken::Kind::filename:
            array.append(QJsonObject{{QStringLiteral("filename"), QJsonObject()}});
            break;
        }
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::expected<TokenizedPath, QString> decode(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray()) {
        return std::unexpected(QStringLiteral("not a JSON array"));
    }
    TokenizedPath path;
    for (const QJsonValue& value : document.array()) {
        const QJsonObject object = value.toObject();
        if (object.size() != 1) {
            return std::unexpected(QStringLiteral("Invalid number of keys found, expected one."));
        }
        const QString name = object.begin().key();
        if (name == QLatin1String("element")) {
            const QJsonValue text = object.begin().value().toObject().value(QStringLiteral("_0"));
            if (!text.isString()) {
                return std::unexpected(QStringLiteral("an element without its text"));
            }
            path.append(PathToken::element(text.toString()));
        } else if (name == QLatin1String("date")) {
            path.append(PathToken::date());
        } else if (name == QLatin1String("uuid")) {
            path.append(PathToken::uuid());
        } else if (name == QLatin1String("filename")) {
            path.append(PathToken::filename());
        } else {
            return std::unexpected(QStringLiteral("unknown token \"%1\"").arg(name));
        }
    }
    return path;
}

TokenizedPath fromStored(const QByteArray& stored)
{
    if (stored.isEmpty()) {
        return defaultPath();
    }
    return decode(stored).value_or(defaultPath());
}

} // namespace S3KeyPath

qint64 S3ExpirationOption::seconds() const
{
    switch (unit) {
    case Unit::minutes:
        return qint64(count) * 60;
    case Unit::hours:
        return qint64(count) * 3600;
    case Unit::days:
        return qint64(count) * 86400;
    }
    return 0;
}

QString S3ExpirationOption::title() const
{
    switch (unit) {
    case Unit::minutes:
        return count == 1 ? Localized("date.minute", "1 minute")
                          : Localized("date.minutes", "%n minutes", count);
    case Unit::hours:
        return count == 1 ? Localized("date.hour", "1 hour") : Localized("date.hours", "%n hours", count);
    case Unit::days:
        return count == 1 ? Localized("date.day", "1 day") : Localized("date.days", "%n days", count);
    }
    return {};
}

const QList<S3ExpirationOption>& S3ExpirationOption::all()
{
    static const QList<S3ExpirationOption> options{
        {Unit::minutes, 10}, {Unit::minutes, 30}, {Unit::hours, 1}, {Unit::hours, 3}, {Unit::hours, 6},
        {Unit::hours, 12},   {Unit::hours, 24},   {Unit::days, 2},  {Unit::days, 3},  {Unit::days, 4},
        {Unit::days, 5},     {Unit::days, 6},     {Unit::days, 7},
    };
    return options;
}

qsizetype S3ExpirationOption::closestIndex(qint64 seconds)
{
    qsizetype best = 0;
    for (qsizetype index = 1; index < all().size(); ++index) {
        if (std::abs(all()[index].seconds() - seconds) < std::abs(all()[best].seconds() - seconds)) {
            best = index;
        }
    }
    return best;
}

} // namespace Vantrope
