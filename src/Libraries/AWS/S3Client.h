// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "AwsCredentials.h"
#include "AwsError.h"
#include "S3Endpoint.h"
#include "SignatureV4.h"

#include <chrono>
#include <expected>
#include <functional>
#include <QDateTime>
#include <QObject>
#include <QPointer>

class QIODevice;
class QNetworkAccessManager;
class QNetworkReply;

namespace Vantrope::AWS {

// Signed requests to one bucket. Main thread; replies come back there too.
class S3Client final : public QObject {
    Q_OBJECT
public:
    struct Configuration {
        Credentials credentials;
        QString bucket;
        QString region;
        S3Endpoint endpoint;
        // A request that moves no byte for this long fails with a time-out.
        std::chrono::milliseconds stallTimeout{60000};
    };

    using Header = SignatureV4::Header;
    using QueryItem = SignatureV4::QueryItem;
    // The status and body of a finished request, or why it failed.
    struct Response {
        int httpStatus = 0;
        QByteArray body;
        QByteArray etag;
    };
    using Completion = std::function<void(std::expected<Response, Error>)>;

    explicit S3Client(Configuration configuration, QObject* parent = nullptr);
    ~S3Client() override;

    const Configuration& configuration() const { return m_configuration; }
    // For tests of a wrong clock; the system clock otherwise.
    void setClock(std::function<QDateTime()> now) { m_now = std::move(now); }

    // Sends a request about `key` (empty for the bucket). `body` is read as it goes and must stay open
    // until the completion; `payloadHash` is its hex SHA-256 or "UNSIGNED-PAYLOAD". Answers the reply so
    // that its upload progress can be followed; the completion runs once, also after `abort()`.
    QNetworkReply* send(const QByteArray& method, const QString& key, const QList<QueryItem>& query,
                        const QList<Header>& headers, QIODevice* body, const QByteArray& payloadHash,
                        Completion completion);

    // Ends a request sent by `send`; its completion reports a cancellation.
    static void cancel(QNetworkReply* reply);

    // The object's address without a signature: it opens only for public objects.
    QUrl objectUrl(const QString& key) const;
    // A link that lets anyone read the object for `lifetime` (at most a week).
    QUrl presignedUrl(const QString& key, std::chrono::seconds lifetime) const;

private:
    Configuration m_configuration;
    SignatureV4 m_signer;
    QNetworkAccessManager* m_network;
    std::function<QDateTime()> m_now;
};

} // namespace Vantrope::AWS
