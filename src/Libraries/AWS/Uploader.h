// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "AccessControl.h"
#include "S3Client.h"

#include <chrono>
#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <QFutureWatcher>
#include <QObject>
#include <QPointer>

class QFile;

namespace Vantrope::AWS {

// One file to one object. Small files go in one signed PUT; larger ones as a multipart upload whose parts
// (hashed off the main thread, then streamed from the file) go up several at a time, so memory stays flat
// however large the file. A failure or a cancel aborts the multipart upload, so the bucket keeps no orphaned
// parts.
class Uploader final : public QObject {
    Q_OBJECT
public:
    struct File {
        QString localPath;
        QString key; // the object's name in the bucket
    };

    struct Options {
        AccessControl accessControl = AccessControl::privateAccess;
        // A presigned link of this lifetime is the result; none gives the object's plain address.
        std::optional<std::chrono::seconds> presignedExpiry;
        QByteArray contentType; // empty: "application/octet-stream"
    };

    struct Result {
        QUrl url;
        QString key;
        QString bucket;
    };

    using Completion = std::function<void(std::expected<Result, Error>)>;

    static constexpr qint64 defaultMultipartThreshold = 16 * 1024 * 1024;
    // S3 takes parts of at least 5 MiB (but the last) and at most 10,000 parts.
    static constexpr qint64 minimumPartSize = 8 * 1024 * 1024;
    static constexpr int maximumParts = 10000;
    // Parts stream from the file, so more in flight costs sockets, not memory. One network manager opens
    // at most six connections to a host, so the parts take turns between two of them.
    static constexpr int partsInFlight = 12;

    Uploader(S3Client::Configuration configuration, File file, Options options, QObject* parent = nullptr);
    ~Uploader() override;

    void setMultipartThreshold(qint64 bytes) { m_multipartThreshold = bytes; }
    void setClock(std::function<QDateTime()> now)
    {
        m_client.setClock(now);
        m_partClient.setClock(std::move(now));
    }

    // Starts once; `completion` runs once, on the main thread.
    void upload(Completion completion);
    // The completion then reports a cancellation.
    void cancel();

Q_SIGNALS:
    void progressed(qint64 bytesSent, qint64 totalBytes);

private:
    struct Part {
        int number = 0;
        qint64 offset = 0;
        qint64 size = 0;
        QByteArray etag;
        qint64 sent = 0;
    };

    void uploadSingle();
    void startMultipart();
    void pumpParts();
    void sendPart(int index, const QByteArray& hash);
    void completeMultipart();
    // Cancels what is under way, drops the parts at the server and then reports `reason` (a
    // cancellation when none).
    void abortMultipart(std::optional<Error> reason = std::nullopt);
    void finish(std::expected<Result, Error> result);
    void reportProgress();
    Result result() const;
    QList<S3Client::Header> objectHeaders() const;

    S3Client m_client;
    S3Client m_partClient;
    File m_file;
    Options m_options;
    qint64 m_multipartThreshold = defaultMultipartThreshold;
    qint64 m_size = 0;
    qint64 m_singleSent = 0;
    Completion m_completion;
    bool m_finished = false;
    bool m_cancelled = false;
    QString m_uploadId;
    QList<Part> m_parts;
    int m_nextPart = 0;
    int m_inFlight = 0;
    QFile* m_body = nullptr;
    QList<QPointer<QNetworkReply>> m_replies;
};

} // namespace Vantrope::AWS
