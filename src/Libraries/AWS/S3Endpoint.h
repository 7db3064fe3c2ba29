// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace Vantrope::AWS {

// Where a bucket's objects are reached: Amazon by default, or an S3-compatible service at `url`
// (MinIO, Garage, Ceph, R2...), whose buckets are often only reachable path-style.
struct S3Endpoint {
    // Empty for Amazon.
    QUrl url;
    // "https://host/bucket/key" rather than "https://bucket.host/key".
    bool pathStyle = false;

    struct Target {
        QString scheme;
        QByteArray host; // with the port when it is not the scheme's default
        QString path;    // decoded, from "/"
    };

    // Where `key` of `bucket` lives. An empty key names the bucket itself.
    Target target(const QString& bucket, const QString& region, const QString& key) const;
    // The URL for a target and an already encoded target (path and query).
    static QUrl urlFor(const Target& target, const QByteArray& encodedPathAndQuery);
    // An endpoint a user typed: needs http or https and a host, and nothing after the path.
    static bool isValidEndpoint(const QUrl& url);
};

} // namespace Vantrope::AWS
