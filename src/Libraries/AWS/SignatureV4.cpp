// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SignatureV4.h"

#include <algorithm>
#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

namespace Vantrope::AWS {

namespace {

constexpr QByteArrayView algorithm = "AWS4-HMAC-SHA256";

QByteArray hmac(const QByteArray& key, const QByteArray& message)
{
    return QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256);
}

QByteArray sha256Hex(const QByteArray& data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex();
}

QByteArray collapseSpaces(const QByteArray& value)
{
    QByteArray result;
    result.reserve(value.size());
    bool lastWasSpace = false;
    for (char c : value.trimmed()) {
        const bool space = c == ' ' || c == '\t';
        if (space && lastWasSpace) {
            continue;
        }
        result.append(space ? ' ' : c);
        lastWasSpace = space;
    }
    return result;
}

bool isUnreserved(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.' || c == '~';
}

QByteArray canonicalQuery(const QList<SignatureV4::QueryItem>& query)
{
    QList<std::pair<QByteArray, QByteArray>> encoded;
    encoded.reserve(query.size());
    for (const auto& [name, value] : query) {
        encoded.append({SignatureV4::uriEncode(name, false), SignatureV4::uriEncode(value, false)});
    }
    std::sort(encoded.begin(), encoded.end());
    QByteArray result;
    for (const auto& [name, value] : encoded) {
        if (!result.isEmpty()) {
            result.append('&');
        }
        result.append(name).append('=').append(value);
    }
    return result;
}

} // namespace

const QByteArray SignatureV4::emptyPayloadHash =
    QByteArrayLiteral("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");

SignatureV4::SignatureV4(Credentials credentials, QString region, QString service)
    : m_credentials(std::move(credentials))
    , m_region(std::move(region))
    , m_service(std::move(service))
{}

QByteArray SignatureV4::uriEncode(const QString& text, bool keepSlash)
{
    static constexpr char hex[] = "0123456789ABCDEF";
    const QByteArray utf8 = text.toUtf8();
    QByteArray result;
    result.reserve(utf8.size() * 3);
    for (char c : utf8) {
        if (isUnreserved(c) || (keepSlash && c == '/')) {
            result.append(c);
        } else {
            const auto byte = static_cast<unsigned char>(c);
            result.append('%').append(hex[byte >> 4]).append(hex[byte & 0xF]);
        }
    }
    return result;
}

QByteArray SignatureV4::encodedTarget(const QString& path, const QList<QueryItem>& query)
{
    QByteArray target = uriEncode(path.isEmpty() ? QStringLiteral("/") : path, true);
    const QByteArray encodedQuery = canonicalQuery(query);
    if (!encodedQuery.isEmpty()) {
        target.append('?').append(encodedQuery);
    }
    return target;
}

QByteArray SignatureV4::amzDate(const QDateTime& now)
{
    return now.toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")).toLatin1();
}

QString SignatureV4::credentialScope(const QDateTime& now) const
{
    return now.toUTC().toString(QStringLiteral("yyyyMMdd")) + QLatin1Char('/') + m_region + QLatin1Char('/') +
           m_service + QStringLiteral("/aws4_request");
}

QList<SignatureV4::Header> SignatureV4::canonicalHeaders(const Request& request)
{
    QList<Header> headers;
    headers.append({QByteArrayLiteral("host"), collapseSpaces(request.host)});
    for (const auto& [name, value] : request.headers) {
        const QByteArray lower = name.toLower();
        if (lower == "host") {
            continue;
        }
        headers.append({lower, collapseSpaces(value)});
    }
    std::stable_sort(headers.begin(), headers.end(),
                     [](const Header& a, const Header& b) { return a.first < b.first; });
    return headers;
}

QByteArray SignatureV4::canonicalRequest(const Request& request, const QList<Header>& signedHeaders) const
{
    QByteArray headerLines;
    QByteArray names;
    for (const auto& [name, value] : signedHeaders) {
        headerLines.append(name).append(':').append(value).append('\n');
        if (!names.isEmpty()) {
            names.append(';');
        }
        names.append(name);
    }
    return request.method + '\n' +
           uriEncode(request.path.isEmpty() ? QStringLiteral("/") : request.path, true) + '\n' +
           canonicalQuery(request.query) + '\n' + headerLines + '\n' + names + '\n' + request.payloadHash;
}

QByteArray SignatureV4::stringToSign(const QByteArray& canonicalRequest, const QDateTime& now) const
{
    return algorithm.toByteArray() + '\n' + amzDate(now) + '\n' + credentialScope(now).toUtf8() + '\n' +
           sha256Hex(canonicalRequest);
}

QByteArray SignatureV4::signature(const QByteArray& stringToSign, const QDateTime& now) const
{
    const QByteArray date = now.toUTC().toString(QStringLiteral("yyyyMMdd")).toLatin1();
    const QByteArray dateKey = hmac("AWS4" + m_credentials.secretAccessKey.toUtf8(), date);
    const QByteArray regionKey = hmac(dateKey, m_region.toUtf8());
    const QByteArray serviceKey = hmac(regionKey, m_service.toUtf8());
    const QByteArray signingKey = hmac(serviceKey, QByteArrayLiteral("aws4_request"));
    return hmac(signingKey, stringToSign).toHex();
}

QList<SignatureV4::Header> SignatureV4::authorizationHeaders(const Request& request,
                                                             const QDateTime& now) const
{
    Request signedRequest = request;
    QList<Header> added;
    const auto has = [&](QByteArrayView name) {
        return std::any_of(request.headers.cbegin(), request.headers.cend(), [&](const Header& header) {
            return header.first.compare(name, Qt::CaseInsensitive) == 0;
        });
    };
    if (!has("x-amz-date")) {
        added.append({QByteArrayLiteral("x-amz-date"), amzDate(now)});
    }
    if (!has("x-amz-content-sha256")) {
        added.append({QByteArrayLiteral("x-amz-content-sha256"), request.payloadHash});
    }
    signedRequest.headers.append(added);

    const QList<Header> headers = canonicalHeaders(signedRequest);
    QByteArray names;
    for (const auto& header : headers) {
        if (!names.isEmpty()) {
            names.append(';');
        }
        names.append(header.first);
    }
    const QByteArray toSign = stringToSign(canonicalRequest(signedRequest, headers), now);
    const QByteArray authorization =
        algorithm.toByteArray() + " Credential=" + m_credentials.accessKeyId.toUtf8() + '/' +
        credentialScope(now).toUtf8() + ", SignedHeaders=" + names + ", Signature=" + signature(toSign, now);
    added.append({QByteArrayLiteral("Authorization"), authorization});
    return added;
}

QList<SignatureV4::QueryItem>
SignatureV4::presignedQuery(const Request& request, std::chrono::seconds lifetime, const QDateTime& now) const
{
    const auto seconds = std::clamp(lifetime, std::chrono::seconds(1), maximumPresignedLifetime).count();
    Request signedRequest = request;
    signedRequest.headers.clear();
    signedRequest.payloadHash = unsignedPayload.toByteArray();
    signedRequest.query.append({QStringLiteral("X-Amz-Algorithm"), QString::fromLatin1(algorithm)});
    signedRequest.query.append({QStringLiteral("X-Amz-Credential"),
                                m_credentials.accessKeyId + QLatin1Char('/') + credentialScope(now)});
    signedRequest.query.append({QStringLiteral("X-Amz-Date"), QString::fromLatin1(amzDate(now))});
    signedRequest.query.append({QStringLiteral("X-Amz-Expires"), QString::number(seconds)});
    signedRequest.query.append({QStringLiteral("X-Amz-SignedHeaders"), QStringLiteral("host")});
    const QByteArray toSign =
        stringToSign(canonicalRequest(signedRequest, canonicalHeaders(signedRequest)), now);
    QList<QueryItem> query = signedRequest.query;
    query.append({QStringLiteral("X-Amz-Signature"), QString::fromLatin1(signature(toSign, now))});
    return query;
}

} // namespace Vantrope::AWS
