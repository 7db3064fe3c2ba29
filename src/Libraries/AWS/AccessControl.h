// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <array>
#include <optional>
#include <QString>
#include <QStringView>

namespace Vantrope::AWS {

// The canned ACLs an upload may ask for, sent as the "x-amz-acl" header and stored as the raw string.
enum class AccessControl {
    privateAccess,
    publicRead,
    publicReadWrite,
    awsExecRead,
    authenticatedRead,
    bucketOwnerRead,
    bucketOwnerFullControl,
};

namespace AccessControls {

// In the order they are offered.
const std::array<AccessControl, 7>& allCases();
QString rawValue(AccessControl accessControl);
std::optional<AccessControl> fromRawValue(QStringView rawValue);
// What the choice means, for the share sheet.
QString title(AccessControl accessControl);

} // namespace AccessControls

} // namespace Vantrope::AWS
