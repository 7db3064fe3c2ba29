// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <optional>
#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;
class QNetworkRequest;

namespace Vantrope {

// Anonymous image uploads to Imgur under the user's own registered application (its Client-ID, which
// names an application and is no secret): one image gives its link, several become a public album.
// Images go up one after the other. Main thread.
class ImgurController final : public QObject {
    Q_OBJECT
public:
    struct Configuration {
        QString clientIdentifier;
        QUrl apiBase = QUrl(QStringLiteral("https://api.imgur.com"));
        QUrl siteBase = QUrl(QStringLiteral("https://imgur.com"));
        std::chrono::milliseconds stallTimeout{60000};
    };

    struct UploadedImage {
        QString identifier;
        QString deleteHash;
        QUrl url;
    };

    struct UploadResult {
        bool isAlbum = false;
        QString deleteHash;
        QUrl url;
    };

    struct Credits {
        int clientLimit = 0;
        int clientRemaining = 0;
        int userLimit = 0;
        int userRemaining = 0;
        QDateTime userResetDate;
    };

    struct Error {
        enum class Kind { imgurServiceError, underlying, fileNotFound, invalidResponse, cancelled };
        Kind kind = Kind::invalidResponse;
        int httpStatus = 0;
        QString message;
        bool isRateLimit() const;
    };

    template<typename T> using Completion = std::function<void(std::expected<T, Error>)>;

    // The credits one upload of `imageCount` images takes: one each, and one for the album.
    static int creditsNeeded(int imageCount) { return imageCount + (imageCount >= 2 ? 1 : 0); }
    // The user's limit is looked at first: it is the one the user can wait out.
    enum class CreditsCheck { enough, userLimitReached, clientLimitReached };
    static CreditsCheck checkCredits(const Credits& credits, int imageCount)
    {
        const int needed = creditsNeeded(imageCount);
        if (credits.userRemaining < needed) {
            return CreditsCheck::userLimitReached;
        }
        return credits.clientRemaining < needed ? CreditsCheck::clientLimitReached : CreditsCheck::enough;
    }

    ImgurController(Configuration configuration, QStringList imagePaths, QObject* parent = nullptr);
    ~ImgurController() override;

    void requestCredits(Completion<Credits> completion);
    // Runs once; the completion runs once, unless cancelled.
    void upload(Completion<UploadResult> completion);
    // Stops before the next request; what is already up stays.
    void cancel();

    void deleteObject(bool isAlbum, const QString& deleteHash, Completion<bool> completion);

Q_SIGNALS:
    // 100 units per image.
    void progressed(qint64 completedUnits, qint64 totalUnits);

private:
    void uploadNextImage();
    void createAlbum();
    void finish(std::expected<UploadResult, Error> result);
    QNetworkRequest request(const QString& path) const;
    // The reply's "data" object, or why there is none.
    static std::expected<QJsonObject, Error> dataOf(QNetworkReply* reply);

    Configuration m_configuration;
    QNetworkAccessManager* m_network;
    QStringList m_images;
    qint64 m_totalUnits = 0;
    QList<UploadedImage> m_uploaded;
    Completion<UploadResult> m_completion;
    bool m_cancelled = false;
    QPointer<QNetworkReply> m_current;
};

} // namespace Vantrope
