// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Imgur/ImgurController.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Kind = ImgurController::Error::Kind;
using CreditsCheck = ImgurController::CreditsCheck;

Q_DECLARE_METATYPE(ImgurController::Error::Kind)
Q_DECLARE_METATYPE(ImgurController::CreditsCheck)

namespace {

const QString kClientId = u"0123456789abcde"_s;

// The local server that speaks Imgur's protocol (tests/support/imgur).
class ImgurServer final {
public:
    ImgurServer()
    {
        m_process.start(u"/usr/bin/python3"_s, {QStringLiteral(IMGUR_SERVER_SCRIPT), kClientId});
        QByteArray output;
        while (m_process.waitForReadyRead(30000)) {
            output += m_process.readAllStandardOutput();
            if (output.contains('\n')) {
                break;
            }
        }
        if (output.startsWith("ready ")) {
            m_port = quint16(output.mid(6).trimmed().toUInt());
        }
    }
    ~ImgurServer()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    quint16 port() const { return m_port; }
    QUrl base() const { return QUrl(u"http://127.0.0.1:%1"_s.arg(m_port)); }

    QJsonObject call(const QByteArray& method, const QString& path, const QJsonObject& body = {}) const
    {
        QNetworkAccessManager network;
        QNetworkRequest request(QUrl(base().toString() + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        QNetworkReply* reply =
            network.sendCustomRequest(request, method, QJsonDocument(body).toJson(QJsonDocument::Compact));
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(10000, &loop, &QEventLoop::quit);
        loop.exec();
        const QJsonObject answer = QJsonDocument::fromJson(reply->readAll()).object();
        delete reply;
        return answer;
    }
    void control(const QJsonObject& settings) const { call("POST", u"/__control"_s, settings); }
    QJsonObject state() const { return call("GET", u"/__state"_s); }

private:
    QProcess m_process;
    quint16 m_port = 0;
};

template<typename T>
std::expected<T, ImgurController::Error> wait(std::optional<std::expected<T, ImgurController::Error>>& result)
{
    QDeadlineTimer deadline(30000);
    while (!result && !deadline.hasExpired()) {
        QTest::qWait(10);
    }
    return result.value_or(
        std::unexpected(ImgurController::Error{Kind::underlying, 0, u"no answer in time"_s}));
}

} // namespace

class TestImgurController final : public QObject {
    Q_OBJECT

    std::unique_ptr<ImgurServer> m_server;
    QTemporaryDir m_files;
    QStringList m_images;

    ImgurController::Configuration configuration(const QString& clientId = kClientId) const
    {
        return {clientId, m_server->base(), QUrl(u"https://imgur.test"_s), std::chrono::milliseconds(10000)};
    }

    QByteArray sha256Of(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly)
                   ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex()
                   : QByteArray();
    }

    std::expected<ImgurController::UploadResult, ImgurController::Error> upload(ImgurController& controller)
    {
        std::optional<std::expected<ImgurController::UploadResult, ImgurController::Error>> result;
        controller.upload([&](auto outcome) { result = outcome; });
        return wait(result);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_server = std::make_unique<ImgurServer>();
        QVERIFY2(m_server->port() != 0, "the local Imgur server did not start");
        for (int index = 0; index < 3; ++index) {
            QImage image(64 + index, 48, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(index * 100, 200, 200));
            const QString path = m_files.filePath(u"image %1.png"_s.arg(index));
            QVERIFY(image.save(path));
            m_images << path;
        }
    }

    void init() { m_server->control({{u"fail"_s, QString()}}); }

    void oneImageGivesItsLink()
    {
        ImgurController controller(configuration(), {m_images[0]});
        qint64 lastUnits = 0;
        connect(&controller, &ImgurController::progressed, this, [&](qint64 units, qint64 total) {
            QCOMPARE(total, 100);
            lastUnits = units;
        });
        const auto result = upload(controller);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().message));
        QVERIFY(!result->isAlbum);
        QVERIFY(result->url.toString().startsWith(u"https://i.imgur.test/"_s));
        QCOMPARE(lastUnits, 100);
        const QJsonObject image =
            m_server->state().value(u"images"_s).toObject().value(result->deleteHash).toObject();
        QCOMPARE(image.value(u"sha256"_s).toString().toLatin1(), sha256Of(m_images[0]));
    }

    void severalImagesBecomeAnAlbumInOrder()
    {
        ImgurController controller(configuration(), m_images);
        const auto result = upload(controller);
        QVERIFY2(result, qPrintable(result ? QString() : result.error().message));
        QVERIFY(result->isAlbum);
        const QJsonObject state = m_server->state();
        const QJsonObject album = state.value(u"albums"_s).toObject().value(result->deleteHash).toObject();
        QCOMPARE(result->url, QUrl(u"https://imgur.test/a/"_s + album.value(u"id"_s).toString()));
        const QJsonArray hashes = album.value(u"images"_s).toArray();
        QCOMPARE(hashes.size(), 3);
        for (int index = 0; index < 3; ++index) {
            const QJsonObject image =
                state.value(u"images"_s).toObject().value(hashes[index].toString()).toObject();
            QCOMPARE(image.value(u"sha256"_s).toString().toLatin1(), sha256Of(m_images[index]));
        }
    }

    void creditsAreReadAndCheckedAtTheBoundary_data()
    {
        QTest::addColumn<int>("userRemaining");
        QTest::addColumn<int>("clientRemaining");
        QTest::addColumn<int>("images");
        QTest::addColumn<CreditsCheck>("check");
        QTest::newRow("one image, one credit left") << 1 << 1 << 1 << CreditsCheck::enough;
        QTest::newRow("two images need three") << 2 << 100 << 2 << CreditsCheck::userLimitReached;
        QTest::newRow("exactly three for two") << 3 << 3 << 2 << CreditsCheck::enough;
        QTest::newRow("the application's limit") << 50 << 2 << 2 << CreditsCheck::clientLimitReached;
        QTest::newRow("both: the user's first") << 0 << 0 << 1 << CreditsCheck::userLimitReached;
    }

    void creditsAreReadAndCheckedAtTheBoundary()
    {
        QFETCH(int, userRemaining);
        QFETCH(int, clientRemaining);
        QFETCH(int, images);
        QFETCH(CreditsCheck, check);
        m_server->control({{u"credits"_s, QJsonObject{{u"ClientLimit"_s, 12500},
                                                      {u"ClientRemaining"_s, clientRemaining},
                                                      {u"UserLimit"_s, 500},
                                                      {u"UserRemaining"_s, userRemaining},
                                                      {u"UserReset"_s, 1767225600}}}});
        ImgurController controller(configuration(), {});
        std::optional<std::expected<ImgurController::Credits, ImgurController::Error>> result;
        controller.requestCredits([&](auto credits) { result = credits; });
        const auto credits = wait(result);
        QVERIFY2(credits, qPrintable(credits ? QString() : credits.error().message));
        QCOMPARE(credits->userRemaining, userRemaining);
        QCOMPARE(credits->userResetDate, QDateTime(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(ImgurController::checkCredits(*credits, images), check);
    }

    void failures_data()
    {
        QTest::addColumn<QString>("fail");
        QTest::addColumn<QString>("clientId");
        QTest::addColumn<bool>("missingFile");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<bool>("rateLimit");
        QTest::newRow("rate limit") << u"rate-limit"_s << kClientId << false << Kind::imgurServiceError
                                    << true;
        QTest::newRow("a page instead of JSON")
            << u"malformed"_s << kClientId << false << Kind::invalidResponse << false;
        QTest::newRow("unknown Client-ID")
            << QString() << u"wrong"_s << false << Kind::imgurServiceError << false;
        QTest::newRow("file gone") << QString() << kClientId << true << Kind::fileNotFound << false;
    }

    void failures()
    {
        QFETCH(QString, fail);
        QFETCH(QString, clientId);
        QFETCH(bool, missingFile);
        QFETCH(Kind, kind);
        QFETCH(bool, rateLimit);
        m_server->control({{u"fail"_s, fail}});
        ImgurController controller(configuration(clientId),
                                   {missingFile ? m_files.filePath(u"gone.png"_s) : m_images[0]});
        const auto result = upload(controller);
        QVERIFY(!result);
        QCOMPARE(result.error().kind, kind);
        QCOMPARE(result.error().isRateLimit(), rateLimit);
        QVERIFY(!result.error().message.isEmpty());
    }

    // A cancel after the first image sends nothing more and deletes nothing.
    void cancelStopsBeforeTheNextImage()
    {
        const qsizetype before = m_server->state().value(u"images"_s).toObject().size();
        ImgurController controller(configuration(), m_images);
        connect(&controller, &ImgurController::progressed, this, [&](qint64 units, qint64) {
            if (units == 100) {
                controller.cancel();
            }
        });
        bool completed = false;
        controller.upload([&](auto) { completed = true; });
        QTest::qWait(1500);
        QVERIFY(!completed);
        const QJsonObject state = m_server->state();
        QCOMPARE(state.value(u"images"_s).toObject().size(), before + 1);
        QVERIFY(state.value(u"deleted"_s).toArray().isEmpty());
    }

    void deletesAtTheService_data()
    {
        QTest::addColumn<bool>("album");
        QTest::newRow("an image") << false;
        QTest::newRow("an album") << true;
    }

    void deletesAtTheService()
    {
        QFETCH(bool, album);
        ImgurController controller(configuration(), album ? m_images.mid(0, 2) : m_images.mid(0, 1));
        const auto uploaded = upload(controller);
        QVERIFY(uploaded);
        std::optional<std::expected<bool, ImgurController::Error>> deleted;
        controller.deleteObject(album, uploaded->deleteHash, [&](auto result) { deleted = result; });
        QVERIFY(wait(deleted).has_value());
        const QJsonArray gone = m_server->state().value(u"deleted"_s).toArray();
        QVERIFY(gone.contains(QJsonValue((album ? u"album/"_s : u"image/"_s) + uploaded->deleteHash)));

        std::optional<std::expected<bool, ImgurController::Error>> again;
        controller.deleteObject(album, uploaded->deleteHash, [&](auto result) { again = result; });
        const auto second = wait(again);
        QVERIFY(!second);
        QCOMPARE(second.error().httpStatus, 404);
    }
};

QTEST_GUILESS_MAIN(TestImgurController)
#include "TestImgurController.moc"
