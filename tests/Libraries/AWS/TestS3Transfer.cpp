// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/AWS/Deleter.h"
#include "Libraries/AWS/Uploader.h"
#include "support/s3/LocalS3.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Vantrope::AWS;
using namespace Qt::StringLiterals;
using Kind = AWS::Error::Kind;

Q_DECLARE_METATYPE(AWS::Error::Kind)

namespace {

QString writeFile(const QTemporaryDir& dir, const QString& name, qint64 size)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return {};
    }
    QByteArray block(1024 * 1024, Qt::Uninitialized);
    for (qint64 written = 0; written < size; written += block.size()) {
        QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(block.data()), block.size() / 4);
        file.write(block.constData(), std::min<qint64>(block.size(), size - written));
    }
    return path;
}

QByteArray digest(const QByteArray& data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

QByteArray fileDigest(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

std::expected<Uploader::Result, AWS::Error> runUpload(Uploader& uploader, int timeoutMs = 120000)
{
    std::optional<std::expected<Uploader::Result, AWS::Error>> outcome;
    uploader.upload([&](auto result) { outcome = std::move(result); });
    QDeadlineTimer deadline(timeoutMs);
    while (!outcome && !deadline.hasExpired()) {
        QTest::qWait(10);
    }
    return outcome.value_or(std::unexpected(AWS::Error{Kind::server, 0, {}, {}, u"no answer in time"_s}));
}

// A server that plays S3 badly: it answers every request with `reply`, or never when that is empty.
class BadServer final : public QTcpServer {
public:
    explicit BadServer(QByteArray reply)
        : m_reply(std::move(reply))
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    socket->readAll();
                    if (!m_reply.isEmpty() && !socket->property("answered").toBool()) {
                        socket->setProperty("answered", true);
                        socket->write(m_reply);
                    }
                });
            }
        });
    }

private:
    QByteArray m_reply;
};

QByteArray httpReply(int status, const QByteArray& type, const QByteArray& body)
{
    return "HTTP/1.1 " + QByteArray::number(status) + " X\r\nContent-Type: " + type +
           "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace

// Uploads and deletes against a real S3 server whose every request is checked by Amazon's own signer.
class TestS3Transfer final : public QObject {
    Q_OBJECT

    std::unique_ptr<Test::LocalS3> m_s3;
    QTemporaryDir m_files;

private Q_SLOTS:
    void initTestCase()
    {
        m_s3 = std::make_unique<Test::LocalS3>();
        QVERIFY2(m_s3->startError().isEmpty(), qPrintable(m_s3->startError()));
    }

    // Read back through a presigned link, byte for byte; the key is what the user's path made.
    void uploadsAndReadsBack_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint64>("size");
        QTest::addColumn<qint64>("threshold");
        QTest::newRow("one PUT, spaces and accents in the key")
            << u"Vantrope/2F6A/Résumé (final) + notes.pdf"_s << qint64(300 * 1024)
            << Uploader::defaultMultipartThreshold;
        QTest::newRow("empty file") << u"Vantrope/empty.txt"_s << qint64(0)
                                    << Uploader::defaultMultipartThreshold;
        QTest::newRow("multipart, three parts, the last one short")
            << u"Vantrope/big/archive.zip"_s << qint64(2 * Uploader::minimumPartSize + 12345)
            << qint64(1024 * 1024);
    }

    void uploadsAndReadsBack()
    {
        QFETCH(QString, key);
        QFETCH(qint64, size);
        QFETCH(qint64, threshold);
        const QString path = writeFile(m_files, u"upload.bin"_s, size);
        QVERIFY(!path.isEmpty());

        Uploader uploader(m_s3->configuration(), {path, key},
                          {AccessControl::publicRead, std::chrono::seconds(600), "application/zip"});
        uploader.setMultipartThreshold(threshold);
        qint64 lastSent = -1;
        qint64 reportedTotal = -1;
        bool wentBackwards = false;
        connect(&uploader, &Uploader::progressed, this, [&](qint64 sent, qint64 total) {
            wentBackwards = wentBackwards || sent < lastSent;
            lastSent = sent;
            reportedTotal = total;
        });
        const auto result = runUpload(uploader);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().description()));
        QCOMPARE(result->key, key);
        QCOMPARE(result->bucket, QString::fromLatin1(Test::LocalS3::bucket));
        QVERIFY(result->url.hasQuery());
        QCOMPARE(reportedTotal, size);
        QCOMPARE(lastSent, size);
        QVERIFY(!wentBackwards);

        const auto [status, body] = Test::httpGet(result->url);
        QCOMPARE(status, 200);
        QCOMPARE(body.size(), size);
        QCOMPARE(digest(body), fileDigest(path));
    }

    void deletedObjectsAreGone()
    {
        const QString path = writeFile(m_files, u"gone.txt"_s, 1000);
        Uploader uploader(m_s3->configuration(), {path, u"Vantrope/gone.txt"_s}, {});
        const auto uploaded = runUpload(uploader);
        QVERIFY(uploaded);
        S3Client reader(m_s3->configuration());
        QCOMPARE(Test::httpGet(reader.presignedUrl(u"Vantrope/gone.txt"_s, std::chrono::seconds(60))).first,
                 200);

        Deleter deleter(m_s3->configuration());
        std::optional<std::expected<void, AWS::Error>> deleted;
        deleter.deleteFile(u"Vantrope/gone.txt"_s, [&](auto result) { deleted = result; });
        QTRY_VERIFY(deleted.has_value());
        QVERIFY2(*deleted, qPrintable(*deleted ? QString() : deleted->error().description()));
        QCOMPARE(Test::httpGet(reader.presignedUrl(u"Vantrope/gone.txt"_s, std::chrono::seconds(60))).first,
                 404);
    }

    void refusalsSayWhatIsWrong_data()
    {
        QTest::addColumn<QString>("secret");
        QTest::addColumn<QString>("bucket");
        QTest::addColumn<int>("clockOffsetSeconds");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("words");
        QTest::newRow("wrong secret")
            << u"not-the-secret"_s << QString() << 0 << Kind::invalidCredentials << u"secret"_s;
        QTest::newRow("unknown bucket")
            << QString() << u"no-such-bucket"_s << 0 << Kind::noSuchBucket << u"bucket does not exist"_s;
        QTest::newRow("clock an hour slow")
            << QString() << QString() << -3600 << Kind::clockSkew << u"clock"_s;
    }

    void refusalsSayWhatIsWrong()
    {
        QFETCH(QString, secret);
        QFETCH(QString, bucket);
        QFETCH(int, clockOffsetSeconds);
        QFETCH(Kind, kind);
        QFETCH(QString, words);
        auto configuration = m_s3->configuration();
        if (!secret.isEmpty()) {
            configuration.credentials.secretAccessKey = secret;
        }
        if (!bucket.isEmpty()) {
            configuration.bucket = bucket;
        }
        const QString path = writeFile(m_files, u"refused.txt"_s, 100);
        Uploader uploader(configuration, {path, u"refused.txt"_s}, {});
        uploader.setClock(
            [clockOffsetSeconds] { return QDateTime::currentDateTimeUtc().addSecs(clockOffsetSeconds); });
        const auto result = runUpload(uploader);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, kind);
        QVERIFY2(result.error().description().contains(words), qPrintable(result.error().description()));
        QVERIFY(!result.error().description().contains(configuration.credentials.secretAccessKey));
    }

    void brokenServers_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<qint64>("size");
        QTest::addColumn<Kind>("kind");
        QTest::newRow("stalls mid-upload") << QByteArray() << qint64(2000) << Kind::timeout;
        QTest::newRow("a web page instead of XML")
            << httpReply(502, "text/html", "<html><body>Bad gateway</body></html>") << qint64(2000)
            << Kind::server;
        QTest::newRow("403 without a body")
            << httpReply(403, "text/plain", "") << qint64(2000) << Kind::accessDenied;
        QTest::newRow("multipart start answered with a page")
            << httpReply(200, "text/html", "<html>hello</html>") << qint64(3 * 1024 * 1024)
            << Kind::invalidReply;
    }

    void brokenServers()
    {
        QFETCH(QByteArray, reply);
        QFETCH(qint64, size);
        QFETCH(Kind, kind);
        BadServer server(reply);
        auto configuration = m_s3->configuration();
        configuration.endpoint.url = QUrl(u"http://127.0.0.1:%1"_s.arg(server.serverPort()));
        configuration.stallTimeout = std::chrono::milliseconds(700);
        const QString path = writeFile(m_files, u"broken.bin"_s, size);
        Uploader uploader(configuration, {path, u"broken.bin"_s}, {});
        uploader.setMultipartThreshold(1024 * 1024);
        const auto result = runUpload(uploader, 30000);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, kind);
        QVERIFY(!result.error().description().isEmpty());
    }

    void unreachableEndpoint()
    {
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const quint16 port = closed.serverPort();
        closed.close();
        auto configuration = m_s3->configuration();
        configuration.endpoint.url = QUrl(u"http://127.0.0.1:%1"_s.arg(port));
        Uploader uploader(configuration, {writeFile(m_files, u"x.txt"_s, 10), u"x.txt"_s}, {});
        const auto result = runUpload(uploader);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, Kind::unreachable);
    }

    void missingFile()
    {
        Uploader uploader(m_s3->configuration(), {m_files.filePath(u"nowhere.txt"_s), u"nowhere.txt"_s}, {});
        const auto result = runUpload(uploader);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, Kind::fileUnreadable);
    }

    // A cancelled multipart upload leaves neither the object nor its parts on the server.
    void cancelAbortsTheMultipartUpload()
    {
        const QString path = writeFile(m_files, u"cancel.bin"_s, 6 * Uploader::minimumPartSize);
        Uploader uploader(m_s3->configuration(), {path, u"Vantrope/cancelled.bin"_s}, {});
        uploader.setMultipartThreshold(1024 * 1024);
        bool cancelRequested = false;
        connect(&uploader, &Uploader::progressed, this, [&](qint64 sent, qint64) {
            if (sent > 0 && !cancelRequested) {
                cancelRequested = true;
                uploader.cancel();
            }
        });
        const auto result = runUpload(uploader);
        QVERIFY(cancelRequested);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, Kind::cancelled);

        S3Client reader(m_s3->configuration());
        QCOMPARE(
            Test::httpGet(reader.presignedUrl(u"Vantrope/cancelled.bin"_s, std::chrono::seconds(60))).first,
            404);
        // The upload that was started is aborted by its identifier, with a valid signature. (The test
        // server refuses the abort itself with 405; Amazon and the others drop the parts.)
        const QStringList requests = m_s3->requests();
        QString started;
        QDirIterator ids(m_s3->storagePath(), {u"key"_s}, QDir::Files | QDir::Hidden,
                         QDirIterator::Subdirectories);
        while (ids.hasNext()) {
            const QString keyFile = ids.next();
            QFile file(keyFile);
            if (file.open(QIODevice::ReadOnly) && file.readAll() == "Vantrope/cancelled.bin") {
                started = QFileInfo(keyFile).dir().dirName();
            }
        }
        QVERIFY2(!started.isEmpty(), qPrintable(requests.join(u'\n')));
        const QString abort = u"DELETE /vantrope-test/Vantrope/cancelled.bin?uploadId="_s + started;
        const bool aborted = std::any_of(requests.cbegin(), requests.cend(), [&](const QString& line) {
            return line.startsWith(abort) && !line.endsWith(u" 403"_s) && !line.endsWith(u" 400"_s);
        });
        QVERIFY2(aborted, qPrintable(requests.join(u'\n')));
    }
};

QTEST_GUILESS_MAIN(TestS3Transfer)
#include "TestS3Transfer.moc"
