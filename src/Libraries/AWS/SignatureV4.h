// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "AwsCredentials.h"

#include <chrono>
#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <utility>

namespace Vantrope::AWS {

// Signature Version 4 for S3: the Authorization header of a request, and presigned links. Requests are
// described in their decoded form (the object key as the user's text, query values unencoded); the
// signer encodes them the one way S3 expects, and `encodedTarget()` gives the very bytes to send, so that
// what is signed is what goes over the wire.
class SignatureV4 final {
public:
    using Header = std::pair<QByteArray, QByteArray>;
    using QueryItem = std::pair<QString, QString>;

    struct Request {
        QByteArray method = "GET";
        // With a port when it is not the scheme's default, as the Host header carries it.
        QByteArray host;
        // Decoded, starting with "/".
        QString path = QStringLiteral("/");
        QList<QueryItem> query;
        // Further headers to sign; "host" is always signed and need not be here.
        QList<Header> headers;
        // The hex SHA-256 of the body, or "UNSIGNED-PAYLOAD".
        QByteArray payloadHash;
    };

    // The hex SHA-256 of an empty body.
    static const QByteArray emptyPayloadHash;
    static constexpr QByteArrayView unsignedPayload = "UNSIGNED-PAYLOAD";
    // The longest a presigned link may live.
    static constexpr std::chrono::seconds maximumPresignedLifetime{604800};

    SignatureV4(Credentials credentials, QString region, QString service = QStringLiteral("s3"));

    // The headers to add to the request: "x-amz-date", "x-amz-content-sha256" and "Authorization".
    // A "x-amz-date" already among the request's headers is used as it stands.
    QList<Header> authorizationHeaders(const Request& request, const QDateTime& now) const;

    // The query of a presigned link for `request` (which carries no headers but the host), valid for
    // `lifetime`, clamped to 1 s .. `maximumPresignedLifetime`.
    QList<QueryItem> presignedQuery(const Request& request, std::chrono::seconds lifetime,
                                    const QDateTime& now) const;

    // The path and query as they go on the wire: "/key%20name?a=b".
    static QByteArray encodedTarget(const QString& path, const QList<QueryItem>& query);
    // S3's URI encoding: unreserved characters stay, everything else is %XX in upper case; "/" stays
    // only when `keepSlash`.
    static QByteArray uriEncode(const QString& text, bool keepSlash);

    // The steps, for tests and for error reports that show what was signed (never the key).
    QByteArray canonicalRequest(const Request& request, const QList<Header>& signedHeaders) const;
    QByteArray stringToSign(const QByteArray& canonicalRequest, const QDateTime& now) const;
    QByteArray signature(const QByteArray& stringToSign, const QDateTime& now) const;
    QString credentialScope(const QDateTime& now) const;

    static QByteArray amzDate(const QDateTime& now);

private:
    // Lower-case names, trimmed values with inner runs of spaces made one, sorted by name.
    static QList<Header> canonicalHeaders(const Request& request);

    Credentials m_credentials;
    QString m_region;
    QString m_service;
};

} // namespace Vantrope::AWS
