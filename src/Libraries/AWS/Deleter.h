// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "S3Client.h"

#include <expected>
#include <functional>

namespace Vantrope::AWS {

// Removes objects from a bucket, for the share history and the connection test.
class Deleter final : public QObject {
    Q_OBJECT
public:
    using Completion = std::function<void(std::expected<void, Error>)>;

    explicit Deleter(S3Client::Configuration configuration, QObject* parent = nullptr);

    // S3 answers a delete of a missing key with success too.
    void deleteFile(const QString& key, Completion completion);

private:
    S3Client m_client;
};

} // namespace Vantrope::AWS
