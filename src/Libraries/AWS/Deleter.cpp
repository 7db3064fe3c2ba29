// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Deleter.h"

namespace Vantrope::AWS {

Deleter::Deleter(S3Client::Configuration configuration, QObject* parent)
    : QObject(parent)
    , m_client(std::move(configuration))
{}

void Deleter::deleteFile(const QString& key, Completion completion)
{
    m_client.send("DELETE", key, {}, {}, nullptr, SignatureV4::emptyPayloadHash,
                  [completion = std::move(completion)](auto response) {
                      if (!response) {
                          completion(std::unexpected(response.error()));
                          return;
                      }
                      completion({});
                  });
}

} // namespace Vantrope::AWS
