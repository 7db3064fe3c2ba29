// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>

namespace Vantrope::AWS {

// An access key pair. The secret never goes into a log line, an error or a URL: only signatures made
// with it do.
struct Credentials {
    QString accessKeyId;
    QString secretAccessKey;

    bool isComplete() const { return !accessKeyId.isEmpty() && !secretAccessKey.isEmpty(); }
};

} // namespace Vantrope::AWS
