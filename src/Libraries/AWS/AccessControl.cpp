// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "AccessControl.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope::AWS::AccessControls {

const std::array<AccessControl, 7>& allCases()
{
    static constexpr std::array<AccessControl, 7> cases{
        AccessControl::privateAccess,          AccessControl::publicRead,
        AccessControl::publicReadWrite,        AccessControl::awsExecRead,
        AccessControl::authenticatedRead,      AccessControl::bucketOwnerRead,
        AccessControl::bucketOwnerFullControl,
    };
    return cases;
}

QString rawValue(AccessControl accessControl)
{
    switch (accessControl) {
    case AccessControl::privateAccess:
        return QStringLiteral("private");
    case AccessControl::publicRead:
        return QStringLiteral("public-read");
    case AccessControl::publicReadWrite:
        return QStringLiteral("public-read-write");
    case AccessControl::awsExecRead:
        return QStringLiteral("aws-exec-read");
    case AccessControl::authenticatedRead:
        return QStringLiteral("authenticated-read");
    case AccessControl::bucketOwnerRead:
        return QStringLiteral("bucket-owner-read");
    case AccessControl::bucketOwnerFullControl:
        return QStringLiteral("bucket-owner-full-control");
    }
    return {};
}

std::optional<AccessControl> fromRawValue(QStringView raw)
{
    for (AccessControl accessControl : allCases()) {
        if (rawValue(accessControl) == raw) {
            return accessControl;
        }
    }
    return std::nullopt;
}

QString title(AccessControl accessControl)
{
    switch (accessControl) {
    case AccessControl::privateAccess:
        return Localized("service.s3.acl.private", "Private (only the bucket owner)");
    case AccessControl::publicRead:
        return Localized("service.s3.acl.public-read", "Anyone can read");
    case AccessControl::publicReadWrite:
        return Localized("service.s3.acl.public-read-write", "Anyone can read and write");
    case AccessControl::awsExecRead:
        return Localized("service.s3.acl.aws-exec-read", "Readable by Amazon EC2");
    case AccessControl::authenticatedRead:
        return Localized("service.s3.acl.authenticated-read", "Any signed-in AWS user can read");
    case AccessControl::bucketOwnerRead:
        return Localized("service.s3.acl.bucket-owner-read", "The bucket owner can read");
    case AccessControl::bucketOwnerFullControl:
        return Localized("service.s3.acl.bucket-owner-full-control", "The bucket owner has full control");
    }
    return {};
}

} // namespace Vantrope::AWS::AccessControls
