// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Uploader.h"

#include "FileRangeDevice.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QtConcurrent/QtConcurrentRun>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Vantrope::AWS {

namespace {

// The hash of one part, read a block at a time; the part itself is sent from the file later.
std::expected<QByteArray, QString> hashPart(const QString& path, qint64 offset, qint64 size)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(offset)) {
        return std::unexpected(file.errorString());
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray block(1024 * 1024, Qt::Uninitialized);
    qint64 left = size;
    while (left > 0) {
        const qint64 read = file.read(block.data(), std::min<qint64>(block.size(), left));
        if (read <= 0) {
            return std::unexpected(read < 0 ? file.errorString()
                                            : QStringLiteral("the file changed while it was read"));
        }
        hash.addData(QByteArrayView(block.constData(), read));
        left -= read;
    }
    return hash.result().toHex();
}

// The whole file's hash, read a block at a time.
std::expected<QByteArray, QString> hashFile(const QString& path, qint64 expectedSize)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::unexpected(file.errorString());
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    qint64 total = 0;
    QByteArray block(1024 * 1024, Qt::Uninitialized);
    while (true) {
        const qint64 read = file.read(block.data(), block.size());
        if (read < 0) {
            return std::unexpected(file.errorString());
        }
        if (read == 0) {
            break;
        }
        hash.addData(QByteArrayView(block.constData(), read));
        total += read;
    }
    if (total != expectedSize) {
        return std::unexpected(QStringLiteral("the file changed while it was read"));
    }
    return hash.result().toHex();
}

QString uploadIdOf(const QByteArray& body)
{
    QXmlStreamReader xml(body);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("UploadId")) {
            return xml.readElementText().trimmed();
        }
    }
    return {};
}

Error fileError(const QString& detail)
{
    Error error;
    error.kind = Error::Kind::fileUnreadable;
    error.detail = detail;
    return error;
}

} // namespace

Uploader::Uploader(S3Client::Configuration configuration, File file, Options options, QObject* parent)
    : QObject(parent)
    , m_client(configuration)
    , m_partClient(std::move(configuration))
    , m_file(std::move(file))
    , m_options(std::move(options))
{}

Uploader::~Uploader()
{
    m_finished = true;
    for (const auto& reply : std::as_const(m_replies)) {
        if (reply) {
            reply->abort();
        }
    }
}

QList<S3Client::Header> Uploader::objectHeaders() const
{
    return {
        {QByteArrayLiteral("x-amz-acl"), AccessControls::rawValue(m_options.accessControl).toLatin1()},
        {QByteArrayLiteral("Content-Type"), m_options.contentType.isEmpty()
                                                ? QByteArrayLiteral("application/octet-stream")
                                                : m_options.contentType},
    };
}

void Uploader::upload(Completion completion)
{
    if (m_completion) {
        return;
    }
    m_completion = std::move(completion);
    const QFileInfo info(m_file.localPath);
    if (!info.isFile() || !info.isReadable()) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                finish(std::unexpected(
                    fileError(QStringLiteral("no readable file at %1").arg(m_file.localPath))));
            },
            Qt::QueuedConnection);
        return;
    }
    m_size = info.size();
    if (m_size <= m_multipartThreshold) {
        uploadSingle();
    } else {
        startMultipart();
    }
}

void Uploader::uploadSingle()
{
    auto* watcher = new QFutureWatcher<std::expected<QByteArray, QString>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        if (m_finished || m_cancelled) {
            return;
        }
        const auto hash = watcher->result();
        if (!hash) {
            finish(std::unexpected(fileError(hash.error())));
            return;
        }
        m_body = new QFile(m_file.localPath, this);
        if (!m_body->open(QIODevice::ReadOnly)) {
            finish(std::unexpected(fileError(m_body->errorString())));
            return;
        }
        QList<S3Client::Header> headers = objectHeaders();
        QNetworkReply* reply =
            m_client.send("PUT", m_file.key, {}, headers, m_body, *hash, [this](auto response) {
                if (m_finished) {
                    return;
                }
                if (!response) {
                    finish(std::unexpected(response.error()));
                    return;
                }
                finish(result());
            });
        m_replies.append(reply);
        // The network layer reports 0 of 0 once the body is gone; progress only moves forward.
        connect(reply, &QNetworkReply::uploadProgress, this, [this](qint64 sent, qint64) {
            if (!m_finished && sent > m_singleSent) {
                m_singleSent = std::min(sent, m_size);
                Q_EMIT progressed(m_singleSent, m_size);
            }
        });
    });
    watcher->setFuture(QtConcurrent::run(hashFile, m_file.localPath, m_size));
}

void Uploader::startMultipart()
{
    const qint64 partSize = std::max(minimumPartSize, (m_size + maximumParts - 1) / maximumParts);
    for (qint64 offset = 0, number = 1; offset < m_size; offset += partSize, ++number) {
        m_parts.append({int(number), offset, std::min(partSize, m_size - offset), {}, 0});
    }
    QNetworkReply* reply =
        m_client.send("POST", m_file.key, {{QStringLiteral("uploads"), QString()}}, objectHeaders(), nullptr,
                      SignatureV4::emptyPayloadHash, [this](auto response) {
                          if (m_finished) {
                              return;
                          }
                          if (!response) {
                              finish(std::unexpected(response.error()));
                              return;
                          }
                          m_uploadId = uploadIdOf(response->body);
                          if (m_uploadId.isEmpty()) {
                              Error error;
                              error.kind = Error::Kind::invalidReply;
                              error.httpStatus = response->httpStatus;
                              error.detail = QStringLiteral("no upload identifier in the reply");
                              finish(std::unexpected(error));
                              return;
                          }
                          if (m_cancelled) {
                              abortMultipart();
                              return;
                          }
                          pumpParts();
                      });
    m_replies.append(reply);
}

void Uploader::pumpParts()
{
    while (!m_finished && !m_cancelled && m_inFlight < partsInFlight && m_nextPart < m_parts.size()) {
        const int index = m_nextPart++;
        ++m_inFlight;
        const Part part = m_parts[index];
        auto* watcher = new QFutureWatcher<std::expected<QByteArray, QString>>(this);
        connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, index] {
            watcher->deleteLater();
            if (m_finished || m_cancelled) {
                return;
            }
            const auto hash = watcher->result();
            if (!hash) {
                m_cancelled = true;
                abortMultipart(fileError(hash.error()));
                return;
            }
            sendPart(index, *hash);
        });
        watcher->setFuture(QtConcurrent::run(hashPart, m_file.localPath, part.offset, part.size));
    }
}

void Uploader::sendPart(int index, const QByteArray& hash)
{
    const Part& part = m_parts[index];
    auto* body = new FileRangeDevice(m_file.localPath, part.offset, part.size, this);
    if (!body->open(QIODevice::ReadOnly)) {
        const QString reason = body->fileErrorString();
        delete body;
        --m_inFlight;
        m_cancelled = true;
        abortMultipart(fileError(reason));
        return;
    }
    const QList<S3Client::QueryItem> query{{QStringLiteral("partNumber"), QString::number(part.number)},
                                           {QStringLiteral("uploadId"), m_uploadId}};
    S3Client& client = index % 2 == 0 ? m_client : m_partClient;
    QNetworkReply* reply =
        client.send("PUT", m_file.key, query, {}, body, hash, [this, index, body](auto response) {
            body->deleteLater();
            if (m_finished || m_cancelled) {
                return;
            }
            --m_inFlight;
            if (!response) {
                m_cancelled = true;
                abortMultipart(response.error());
                return;
            }
            if (response->etag.isEmpty()) {
                Error error;
                error.kind = Error::Kind::invalidReply;
                error.detail = QStringLiteral("no ETag for part %1").arg(m_parts[index].number);
                m_cancelled = true;
                abortMultipart(error);
                return;
            }
            m_parts[index].etag = response->etag;
            m_parts[index].sent = m_parts[index].size;
            reportProgress();
            const bool done = std::all_of(m_parts.cbegin(), m_parts.cend(),
                                          [](const Part& p) { return !p.etag.isEmpty(); });
            if (done) {
                completeMultipart();
            } else {
                pumpParts();
            }
        });
    m_replies.append(reply);
    connect(reply, &QNetworkReply::uploadProgress, this, [this, index](qint64 sent, qint64) {
        if (!m_finished && m_parts[index].etag.isEmpty() && sent > m_parts[index].sent) {
            m_parts[index].sent = std::min(sent, m_parts[index].size);
            reportProgress();
        }
    });
}

void Uploader::completeMultipart()
{
    QByteArray body;
    QXmlStreamWriter xml(&body);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("CompleteMultipartUpload"));
    xml.writeDefaultNamespace(QStringLiteral("http://s3.amazonaws.com/doc/2006-03-01/"));
    for (const Part& part : std::as_const(m_parts)) {
        xml.writeStartElement(QStringLiteral("Part"));
        xml.writeTextElement(QStringLiteral("PartNumber"), QString::number(part.number));
        xml.writeTextElement(QStringLiteral("ETag"), QString::fromLatin1(part.etag));
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();

    auto* buffer = new QBuffer(this);
    buffer->setData(body);
    buffer->open(QIODevice::ReadOnly);
    QNetworkReply* reply = m_client.send(
        "POST", m_file.key, {{QStringLiteral("uploadId"), m_uploadId}},
        {{QByteArrayLiteral("Content-Type"), QByteArrayLiteral("application/xml")}}, buffer,
        QCryptographicHash::hash(body, QCryptographicHash::Sha256).toHex(), [this, buffer](auto response) {
            buffer->deleteLater();
            if (m_finished) {
                return;
            }
            if (!response) {
                m_cancelled = true;
                abortMultipart(response.error());
                return;
            }
            finish(result());
        });
    m_replies.append(reply);
}

void Uploader::abortMultipart(std::optional<Error> reason)
{
    Error error;
    if (reason) {
        error = *reason;
    } else {
        error.kind = Error::Kind::cancelled;
    }
    for (const auto& reply : std::as_const(m_replies)) {
        S3Client::cancel(reply);
    }
    if (m_uploadId.isEmpty()) {
        finish(std::unexpected(error));
        return;
    }
    // The parts already sent cost storage until the upload is aborted; report once the server has
    // dropped them, or failed to.
    QNetworkReply* reply =
        m_client.send("DELETE", m_file.key, {{QStringLiteral("uploadId"), m_uploadId}}, {}, nullptr,
                      SignatureV4::emptyPayloadHash, [this, error](auto) { finish(std::unexpected(error)); });
    m_replies.append(reply);
}

void Uploader::cancel()
{
    if (m_finished || m_cancelled || !m_completion) {
        return;
    }
    m_cancelled = true;
    if (m_uploadId.isEmpty() && !m_parts.isEmpty()) {
        // The multipart upload is being created; its reply aborts it.
        for (const auto& reply : std::as_const(m_replies)) {
            S3Client::cancel(reply);
        }
        return;
    }
    abortMultipart();
}

void Uploader::finish(std::expected<Result, Error> outcome)
{
    if (m_finished) {
        return;
    }
    m_finished = true;
    if (outcome && m_parts.isEmpty() && (m_singleSent < m_size || m_size == 0)) {
        Q_EMIT progressed(m_size, m_size);
    }
    const Completion completion = std::move(m_completion);
    completion(std::move(outcome));
}

void Uploader::reportProgress()
{
    qint64 sent = 0;
    for (const Part& part : std::as_const(m_parts)) {
        sent += part.sent;
    }
    Q_EMIT progressed(sent, m_size);
}

Uploader::Result Uploader::result() const
{
    const QUrl url = m_options.presignedExpiry ? m_client.presignedUrl(m_file.key, *m_options.presignedExpiry)
                                               : m_client.objectUrl(m_file.key);
    return {url, m_file.key, m_client.configuration().bucket};
}

} // namespace Vantrope::AWS
