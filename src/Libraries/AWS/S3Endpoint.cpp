// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "S3Endpoint.h"

namespace Vantrope::AWS {

S3Endpoint::Target S3Endpoint::target(const QString& bucket, const QString& region, const QString& key) const
{
    Target target;
    QString host;
    int port = -1;
    // Buckets with dots cannot be virtual hosts under TLS: the certificate covers one level only.
    const bool byPath = pathStyle || bucket.contains(QLatin1Char('.'));
    if (url.isEmpty()) {
        target.scheme = QStringLiteral("https");
        host = QStringLiteral("s3.%1.amazonaws.com")
                   .arg(region.isEmpty() ? QStringLiteral("us-east-1") : region);
    } else {
        target.scheme = url.scheme().toLower();
        host = url.host();
        port = url.port();
    }
    QString prefix = url.isEmpty() ? QString() : url.path();
    while (prefix.endsWith(QLatin1Char('/'))) {
        prefix.chop(1);
    }
    if (byPath) {
        target.path = prefix + QLatin1Char('/') + bucket + QLatin1Char('/') + key;
    } else {
        host = bucket + QLatin1Char('.') + host;
        target.path = prefix + QLatin1Char('/') + key;
    }
    const int defaultPort = target.scheme == QLatin1String("http") ? 80 : 443;
    target.host = host.toUtf8();
    if (port > 0 && port != defaultPort) {
        target.host += ':' + QByteArray::number(port);
    }
    return target;
}

QUrl S3Endpoint::urlFor(const Target& target, const QByteArray& encodedPathAndQuery)
{
    return QUrl::fromEncoded(target.scheme.toLatin1() + "://" + target.host + encodedPathAndQuery,
                             QUrl::StrictMode);
}

bool S3Endpoint::isValidEndpoint(const QUrl& url)
{
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == QLatin1String("http") || scheme == QLatin1String("https")) &&
           !url.host().isEmpty() && !url.hasQuery() && !url.hasFragment() && url.userInfo().isEmpty();
}

} // namespace Vantrope::AWS
