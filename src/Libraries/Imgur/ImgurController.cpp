// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImgurController.h"

#include <QFile>
#include <QHttpMultiPart>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUuid>

namespace Vantrope {

namespace {

Q_LOGGING_CATEGORY(lcImgur, "vantrope.imgur")

QHttpPart formField(const QByteArray& name, const QByteArray& value)
{
    QHttpPart part;
    part.setRawHeader("Content-Disposition", "form-data; name=\"" + name + '"');
    part.setBody(value);
    return part;
}

QHttpMultiPart* makeForm(QObject* parent)
{
    auto* form = new QHttpMultiPart(QHttpMultiPart::FormDataType, parent);
    form->setBoundary("Boundary-" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces));
    return form;
}

} // namespace

bool ImgurController::Error::isRateLimit() const
{
    return httpStatus == 429 || message.contains(QLatin1String("rate limit"), Qt::CaseInsensitive) ||
           message.contains(QLatin1String("over capacity"), Qt::CaseInsensitive);
}

ImgurController::ImgurController(Configuration configuration, QStringList imagePaths, QObject* parent)
    : QObject(parent)
    , m_configuration(std::move(configuration))
    , m_network(new QNetworkAccessManager(this))
    , m_images(std::move(imagePaths))
    , m_totalUnits(qint64(m_images.size()) * 100)
{}

ImgurController::~ImgurController()
{
    m_cancelled = true;
    if (m_current) {
        m_current->abort();
    }
}

QNetworkRequest ImgurController::request(const QString& path) const
{
    QUrl url = m_configuration.apiBase;
    url.setPath(url.path() + path);
    QNetworkRequest request(url);
    request.setRawHeader("Authorization", "Client-ID " + m_configuration.clientIdentifier.toUtf8());
    request.setTransferTimeout(int(m_configuration.stallTimeout.count()));
    return request;
}

std::expected<QJsonObject, ImgurController::Error> ImgurController::dataOf(QNetworkReply* reply)
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray body = reply->readAll();
    if (status == 0) {
        return std::unexpected(Error{Error::Kind::underlying, 0, reply->errorString()});
    }
    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        qCWarning(lcImgur) << "Expected JSON to be a dictionary but is something else";
        return std::unexpected(Error{Error::Kind::invalidResponse, status,
                                     QStringLiteral("the answer (HTTP %1) is not Imgur's").arg(status)});
    }
    const QJsonValue data = document.object().value(QStringLiteral("data"));
    if (!data.isObject()) {
        if (status >= 200 && status < 300 && data.isBool()) {
            return QJsonObject{{QStringLiteral("result"), data}};
        }
        qCWarning(lcImgur) << "Expected JSON to contain \"data\" but it doesn't";
        return std::unexpected(
            Error{Error::Kind::invalidResponse, status, QStringLiteral("no data in the answer")});
    }
    const QJsonObject object = data.toObject();
    const QJsonValue error = object.value(QStringLiteral("error"));
    if (!error.isUndefined() || status >= 300) {
        const QString message = error.isObject()
                                    ? error.toObject().value(QStringLiteral("message")).toString()
                                    : error.toString();
        return std::unexpected(Error{Error::Kind::imgurServiceError, status,
                                     message.isEmpty() ? QStringLiteral("HTTP %1").arg(status) : message});
    }
    return object;
}

void ImgurController::requestCredits(Completion<Credits> completion)
{
    QNetworkReply* reply = m_network->get(request(QStringLiteral("/3/credits")));
    connect(reply, &QNetworkReply::finished, this, [reply, completion = std::move(completion)] {
        reply->deleteLater();
        const auto data = dataOf(reply);
        if (!data) {
            completion(std::unexpected(data.error()));
            return;
        }
        const auto number = [&](const char* key) { return data->value(QLatin1String(key)); };
        if (!number("ClientRemaining").isDouble() || !number("UserRemaining").isDouble()) {
            completion(std::unexpected(
                Error{Error::Kind::invalidResponse, 200, QStringLiteral("no credits in the answer")}));
            return;
        }
        Credits credits;
        credits.clientLimit = number("ClientLimit").toInt();
        credits.clientRemaining = number("ClientRemaining").toInt();
        credits.userLimit = number("UserLimit").toInt();
        credits.userRemaining = number("UserRemaining").toInt();
        credits.userResetDate =
            QDateTime::fromSecsSinceEpoch(qint64(number("UserReset").toDouble()), Qt::UTC);
        completion(credits);
    });
}

void ImgurController::upload(Completion<UploadResult> completion)
{
    if (m_completion) {
        return;
    }
    m_completion = std::move(completion);
    uploadNextImage();
}

void ImgurController::uploadNextImage()
{
    qCDebug(lcImgur) << "Uploading the next image," << m_images.size() << "left";
    if (m_cancelled) {
        return;
    }
    if (m_images.isEmpty()) {
        if (m_uploaded.size() >= 2) {
            createAlbum();
        } else if (!m_uploaded.isEmpty()) {
            finish(UploadResult{false, m_uploaded.first().deleteHash, m_uploaded.first().url});
        } else {
            finish(
                std::unexpected(Error{Error::Kind::fileNotFound, 0, QStringLiteral("no images to upload")}));
        }
        return;
    }
    const QString path = m_images.takeFirst();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcImgur).noquote() << QStringLiteral(
                                            "Failed to create request, file is not found on disk (") +
                                            path + QLatin1Char(')');
        finish(std::unexpected(Error{Error::Kind::fileNotFound, 0, path}));
        return;
    }
    QHttpMultiPart* form = makeForm(this);
    form->append(formField("image", file.readAll().toBase64()));
    form->append(formField("type", "base64"));
    const qint64 doneUnits = qint64(m_uploaded.size()) * 100;
    QNetworkReply* reply = m_network->post(request(QStringLiteral("/3/image")), form);
    form->setParent(reply);
    m_current = reply;
    connect(reply, &QNetworkReply::uploadProgress, this, [this, doneUnits](qint64 sent, qint64 total) {
        if (total > 0 && !m_cancelled) {
            Q_EMIT progressed(doneUnits + std::min<qint64>(99, sent * 100 / total), m_totalUnits);
        }
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply, doneUnits] {
        reply->deleteLater();
        if (m_cancelled) {
            return;
        }
        const auto data = dataOf(reply);
        if (!data) {
            qCWarning(lcImgur).noquote() << "Failed to upload image:" << data.error().message;
            finish(std::unexpected(data.error()));
            return;
        }
        const QString identifier = data->value(QStringLiteral("id")).toString();
        const QString deleteHash = data->value(QStringLiteral("deletehash")).toString();
        const QUrl link(data->value(QStringLiteral("link")).toString());
        if (identifier.isEmpty() || deleteHash.isEmpty() || !link.isValid() || link.isEmpty()) {
            qCWarning(lcImgur).noquote() << "Failed to parse id, link or deletehash from JSON: "
                                         << QJsonDocument(*data).toJson(QJsonDocument::Compact);
            finish(std::unexpected(
                Error{Error::Kind::invalidResponse, 200, QStringLiteral("no link in the answer")}));
            return;
        }
        qCInfo(lcImgur).noquote() << QStringLiteral("Successfully uploaded image with id \"") + identifier +
                                         QLatin1Char('"');
        m_uploaded.append({identifier, deleteHash, link});
        Q_EMIT progressed(doneUnits + 100, m_totalUnits);
        uploadNextImage();
    });
}

void ImgurController::createAlbum()
{
    QHttpMultiPart* form = makeForm(this);
    for (const UploadedImage& image : std::as_const(m_uploaded)) {
        form->append(formField("deletehashes[]", image.deleteHash.toUtf8()));
    }
    form->append(formField("privacy", "public"));
    QNetworkReply* reply = m_network->post(request(QStringLiteral("/3/album")), form);
    form->setParent(reply);
    m_current = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        if (m_cancelled) {
            return;
        }
        const auto data = dataOf(reply);
        if (!data) {
            qCWarning(lcImgur).noquote()
                << QStringLiteral("Failed to create album, error: ") + data.error().message;
            finish(std::unexpected(data.error()));
            return;
        }
        const QString identifier = data->value(QStringLiteral("id")).toString();
        const QString deleteHash = data->value(QStringLiteral("deletehash")).toString();
        if (identifier.isEmpty() || deleteHash.isEmpty()) {
            qCWarning(lcImgur).noquote() << "Failed to parse id, deletehash from JSON: "
                                         << QJsonDocument(*data).toJson(QJsonDocument::Compact);
            finish(std::unexpected(
                Error{Error::Kind::invalidResponse, 200, QStringLiteral("no album in the answer")}));
            return;
        }
        qCInfo(lcImgur).noquote() << QStringLiteral("Successfully created album with id \"") + identifier +
                                         QLatin1Char('"');
        QUrl url = m_configuration.siteBase;
        url.setPath(url.path() + QStringLiteral("/a/") + identifier);
        finish(UploadResult{true, deleteHash, url});
    });
}

void ImgurController::finish(std::expected<UploadResult, Error> result)
{
    if (!m_completion) {
        return;
    }
    const Completion<UploadResult> completion = std::move(m_completion);
    m_completion = nullptr;
    m_images.clear();
    completion(std::move(result));
}

void ImgurController::cancel()
{
    m_cancelled = true;
    m_images.clear();
    m_completion = nullptr;
    if (m_current) {
        m_current->abort();
    }
}

void ImgurController::deleteObject(bool isAlbum, const QString& deleteHash, Completion<bool> completion)
{
    const QString path = (isAlbum ? QStringLiteral("/3/album/") : QStringLiteral("/3/image/")) + deleteHash;
    QNetworkReply* reply = m_network->deleteResource(request(path));
    connect(reply, &QNetworkReply::finished, this, [reply, completion = std::move(completion)] {
        reply->deleteLater();
        const auto data = dataOf(reply);
        if (!data) {
            completion(std::unexpected(data.error()));
            return;
        }
        completion(true);
    });
}

} // namespace Vantrope
