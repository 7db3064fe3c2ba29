// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ServiceCredentials.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Vantrope {

QByteArray AmazonServiceCredentials::toJson() const
{
    return QJsonDocument(QJsonObject{{QStringLiteral("key"), key},
                                     {QStringLiteral("secret"), secret},
                                     {QStringLiteral("bucket"), bucket},
                                     {QStringLiteral("region"), region}})
        .toJson(QJsonDocument::Compact);
}

std::optional<AmazonServiceCredentials> AmazonServiceCredentials::fromJson(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    AmazonServiceCredentials credentials;
    for (const auto& [name, field] : {std::pair{QStringLiteral("key"), &credentials.key},
                                      std::pair{QStringLiteral("secret"), &credentials.secret},
                                      std::pair{QStringLiteral("bucket"), &credentials.bucket},
                                      std::pair{QStringLiteral("region"), &credentials.region}}) {
        const QJsonValue value = object.value(name);
        if (!value.isString()) {
            return std::nullopt;
        }
        *field = value.toString();
    }
    return credentials;
}

} // namespace Vantrope
