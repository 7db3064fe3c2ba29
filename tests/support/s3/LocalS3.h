// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/AWS/S3Client.h"

#include <memory>
#include <QProcess>
#include <QTemporaryDir>

namespace Vantrope::Test {

// A real S3 server on 127.0.0.1 (s3rver, from this folder's lock file) behind a proxy that checks every
// request's signature with botocore and refuses a wrong one as S3 does. Path-style, one bucket.
class LocalS3 final {
public:
    static constexpr const char* accessKey = "AKIAVANTROPETEST0001";
    static constexpr const char* secret = "vantrope/test/secret+with/odd=chars";
    static constexpr const char* bucket = "vantrope-test";

    LocalS3();
    ~LocalS3();

    // Empty when running, else why it could not start.
    QString startError() const { return m_error; }
    AWS::S3Client::Configuration configuration() const;
    quint16 port() const { return m_proxyPort; }
    // Where the server keeps its buckets.
    QString storagePath() const { return m_storage.path(); }

    // "METHOD TARGET STATUS" of every request so far, as the proxy saw it.
    QStringList requests() const;

private:
    QString requestLogPath() const;

    QTemporaryDir m_log;
    QTemporaryDir m_storage;
    QProcess m_server;
    QProcess m_proxy;
    quint16 m_proxyPort = 0;
    QString m_error;
};

// GETs `url` and answers the status and the body.
std::pair<int, QByteArray> httpGet(const QUrl& url);

} // namespace Vantrope::Test
