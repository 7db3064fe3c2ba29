// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "S3Client.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace Vantrope::AWS {

S3Client::S3Client(Configuration configuration, QObject* parent)
    : QObject(parent)
    , m_configuration(std::move(configuration))
    , m_signer(m_configuration.credentials, m_configuration.region)
    , m_network(new QNetworkAccessManager(this))
    , m_now([] { return QDateTime::currentDateTimeUtc(); })
{
    // Redirects would be followed with the signature of another host.
    m_network->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

S3Client::~S3Client() = default;

QNetworkReply* S3Client::send(const QByteArray& method, const QString& key, const QList<QueryItem>& query,
                              const QList<Header>& headers, QIODevice* body, const QByteArray& payloadHash,
                              Completion completion)
{
    const S3Endpoint::Target target =
        m_configuration.endpoint.target(m_configuration.bucket, m_configuration.region, key);
    const SignatureV4::Request signable{method, target.host, target.path, query, headers, payloadHash};
    QNetworkRequest request(S3Endpoint::urlFor(target, SignatureV4::encodedTarget(target.path, query)));
    for (const auto& [name, value] : headers) {
        request.setRawHeader(name, value);
    }
    for (const auto& [name, value] : m_signer.authorizationHeaders(signable, m_now())) {
        request.setRawHeader(name, value);
    }
    request.setTransferTimeout(int(m_configuration.stallTimeout.count()));
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    if (body && !request.hasRawHeader("Content-Type")) {
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/octet-stream"));
    }

    QNetworkReply* reply = m_network->sendCustomRequest(request, method, body);
    connect(reply, &QNetworkReply::finished, this, [reply, completion = std::move(completion)] {
        reply->deleteLater();
        const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const QByteArray content = reply->readAll();
        if (status == 0) {
            Error error;
            const auto networkError = reply->error();
            error.kind = networkError == QNetworkReply::OperationCanceledError ||
                                 networkError == QNetworkReply::TimeoutError
                             ? (reply->property("vantropeCancelled").toBool() ? Error::Kind::cancelled
                                                                              : Error::Kind::timeout)
                             : Error::Kind::unreachable;
            error.detail = reply->errorString();
            completion(std::unexpected(error));
            return;
        }
        if (status >= 300 || Error::isErrorDocument(content)) {
            completion(std::unexpected(Error::fromResponse(status, content)));
            return;
        }
        completion(Response{status, content, reply->rawHeader("ETag")});
    });
    return reply;
}

void S3Client::cancel(QNetworkReply* reply)
{
    if (reply && reply->isRunning()) {
        reply->setProperty("vantropeCancelled", true);
        reply->abort();
    }
}

QUrl S3Client::objectUrl(const QString& key) const
{
    const S3Endpoint::Target target =
        m_configuration.endpoint.target(m_configuration.bucket, m_configuration.region, key);
    return S3Endpoint::urlFor(target, SignatureV4::encodedTarget(target.path, {}));
}

QUrl S3Client::presignedUrl(const QString& key, std::chrono::seconds lifetime) const
{
    const S3Endpoint::Target target =
        m_configuration.endpoint.target(m_configuration.bucket, m_configuration.region, key);
    const auto query =
        m_signer.presignedQuery({"GET", target.host, target.path, {}, {}, {}}, lifetime, m_now());
    return S3Endpoint::urlFor(target, SignatureV4::encodedTarget(target.path, query));
}

} // namespace Vantrope::AWS
