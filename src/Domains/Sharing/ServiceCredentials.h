// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope {

// The login of the S3 bucket the user shares to, kept in the system's secret store as compact JSON
// with exactly the members "key", "secret", "bucket" and "region". Where the bucket lives (an
// S3-compatible endpoint) is kept in the preferences, not here.
struct AmazonServiceCredentials {
    QString key;
    QString secret;
    QString bucket;
    QString region;

    static QString accountName() { return QStringLiteral("service.aws"); }
    QByteArray toJson() const;
    // None unless every member is there as a string.
    static std::optional<AmazonServiceCredentials> fromJson(const QByteArray& json);

    bool operator==(const AmazonServiceCredentials&) const = default;
};

} // namespace Vantrope
