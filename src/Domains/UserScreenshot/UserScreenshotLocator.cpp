// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UserScreenshotLocator.h"

#include "Libraries/Core/URL.h"
#include "UserScreenshotLogging.h"

#include <algorithm>
#include <array>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QtEndian>

namespace Vantrope {

namespace {

const QStringList screenshotExtensions{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                       QStringLiteral("tiff")};

// Attribute names that mark a screenshot where a tool sets one.
const QStringList screenshotExtendedAttributes{
    QStringLiteral("com.apple.metadata:kMDItemIsScreenCapture"),
    QStringLiteral("com.apple.metadata:kMDItemScreenCaptureGlobalRect"),
    QStringLiteral("com.apple.metadata:kMDItemCaptureType")};

// Tools that name themselves in a PNG's "Software" text.
const QStringList screenshotTools{QStringLiteral("gnome-screenshot"), QStringLiteral("spectacle"),
                                  QStringLiteral("flameshot"), QStringLiteral("xfce4-screenshooter"),
                                  QStringLiteral("ksnip")};

// The first words GNOME gives a screenshot's name, by language, from its own translations.
struct LocalizedName {
    const char* language;
    const char* name;
};
constexpr std::array<LocalizedName, 8> localizedNames{{
    {"en", "Screenshot"},
    {"de", "Bildschirmfoto"},
    {"fr", "Capture d’écran"},
    {"es", "Captura de pantalla"},
    {"pl", "Zrzut ekranu"},
    {"ru", "Снимок экрана"},
    {"pt", "Captura de tela"},
    {"nl", "Schermafbeelding"},
}};

bool readExactly(QFile& file, char* data, qint64 size)
{
    return file.read(data, size) == size;
}

} // namespace

UserScreenshotLocator::UserScreenshotLocator(Clock& clock, const QString& language)
    : m_clock(clock)
    , m_screenshotName(
          localizedScreenshotName(language.isEmpty() ? QLocale::system().name().left(2) : language))
{}

UserScreenshotLocator::~UserScreenshotLocator() = default;

QString UserScreenshotLocator::localizedScreenshotName(const QString& language)
{
    for (const LocalizedName& entry : localizedNames) {
        if (language == QLatin1String(entry.language)) {
            return QString::fromUtf8(entry.name);
        }
    }
    return QStringLiteral("Screenshot");
}

bool UserScreenshotLocator::hasToolName(const QString& fileName)
{
    static const std::array<QRegularExpression, 3> patterns{
        // GNOME: "Screenshot from 2024-05-01 10-11-12.png"; "From" from GNOME 47 on.
        QRegularExpression(
            QStringLiteral(R"(^Screenshot [Ff]rom \d{4}-\d{2}-\d{2} \d{2}-\d{2}-\d{2}( \(\d+\))?\.png$)")),
        // Spectacle: "Screenshot_20240501_101112.png".
        QRegularExpression(QStringLiteral(R"(^Screenshot_\d{8}_\d{6}(-\d+)?\.(png|jpe?g)$)")),
        // Flameshot: "2024-05-01_10-11.png".
        QRegularExpression(QStringLiteral(R"(^\d{4}-\d{2}-\d{2}_\d{2}-\d{2}(_\d+)?\.png$)")),
    };
    return std::any_of(patterns.begin(), patterns.end(), [&fileName](const QRegularExpression& pattern) {
        return pattern.match(fileName).hasMatch();
    });
}

std::optional<QString> UserScreenshotLocator::pngSoftware(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    char signature[8];
    if (!readExactly(file, signature, 8) || QByteArray(signature, 8) != QByteArray("\x89PNG\r\n\x1a\n", 8)) {
        return std::nullopt;
    }
    // Text chunks that matter come before the image data; a few dozen chunks at most are looked at.
    for (int chunk = 0; chunk < 64; ++chunk) {
        char header[8];
        if (!readExactly(file, header, 8)) {
            return std::nullopt;
        }
        const quint32 length = qFromBigEndian<quint32>(header);
        const QByteArray type(header + 4, 4);
        if (type == "IDAT" || type == "IEND" || length > 1024 * 1024) {
            return std::nullopt;
        }
        if (type == "tEXt" || type == "iTXt") {
            const QByteArray data = file.read(length);
            if (data.size() != qsizetype(length)) {
                return std::nullopt;
            }
            const qsizetype end = data.indexOf('\0');
            if (end > 0 && data.left(end) == "Software") {
                QByteArray value = data.mid(end + 1);
                if (type == "iTXt") {
                    // Compression flag, method, then a language tag and a translated keyword, each ended by a
                    // zero.
                    if (value.size() < 2 || value.at(0) != 0) {
                        return std::nullopt;
                    }
                    value = value.mid(2);
                    for (int skip = 0; skip < 2; ++skip) {
                        const qsizetype zero = value.indexOf('\0');
                        if (zero < 0) {
                            return std::nullopt;
                        }
                        value = value.mid(zero + 1);
                    }
                    return QString::fromUtf8(value);
                }
                return QString::fromLatin1(value);
            }
            file.skip(4);
        } else if (!file.skip(qint64(length) + 4)) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

bool UserScreenshotLocator::isComplete(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < 12) {
        return false;
    }
    const QString extension = QFileInfo(path).suffix().toLower();
    if (extension == QLatin1String("png")) {
        file.seek(file.size() - 12);
        return file.read(12) == QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12);
    }
    if (extension == QLatin1String("jpg") || extension == QLatin1String("jpeg")) {
        file.seek(file.size() - 2);
        return file.read(2) == QByteArray("\xff\xd9", 2);
    }
    return true;
}

void UserScreenshotLocator::locateScreenshot(const QUrl& directory, Completion completion)
{
    m_queue.async([this, directory, completion = std::move(completion)]() mutable {
        if (m_lastDirectory != directory) {
            if (m_lastDirectory) {
                qCInfo(lcUserScreenshot).noquote()
                    << QStringLiteral("Changed directory from '%1' to '%2', will clear ignored files")
                           .arg(m_lastDirectory->toString(), directory.toString());
            }
            m_ignoredFiles.clear();
        }
        m_retryCount = 0;
        m_lastDirectory = directory;
        scan(std::move(completion));
    });
}

void UserScreenshotLocator::scan(Completion completion)
{
    const QString folder = m_lastDirectory->toLocalFile();
    QList<QUrl> possible;
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString& name : names) {
        const QUrl url = QUrl::fromLocalFile(folder + QLatin1Char('/') + name);
        switch (matchStatus(url, false)) {
        case MatchStatus::match:
            qCInfo(lcUserScreenshot).noquote()
                << QStringLiteral("Found a match (") + url.toLocalFile() + u')';
            m_ignoredFiles.append(url);
            completion(url);
            return;
        case MatchStatus::possible:
            possible.append(url);
            break;
        case MatchStatus::discard:
            break;
        }
    }
    if (possible.isEmpty()) {
        qCDebug(lcUserScreenshot) << "No matches found";
        completion(std::nullopt);
        return;
    }
    qCInfo(lcUserScreenshot).noquote() << QStringLiteral("Found possible match (") +
                                              possible.first().toLocalFile() +
                                              QStringLiteral(", so we're trying one more time");
    m_clock.schedule(
        firstRetryDelay, m_queue,
        [this, alive = std::weak_ptr<int>(m_lifetime), possible, completion = std::move(completion)] {
            if (!alive.expired()) {
                retryFiles(possible, completion);
            }
        });
}

void UserScreenshotLocator::retryFiles(const QList<QUrl>& files, Completion completion)
{
    qCDebug(lcUserScreenshot) << "Retrying files:" << files;
    for (const QUrl& url : files) {
        if (matchStatus(url, true) == MatchStatus::match) {
            qCInfo(lcUserScreenshot) << "Found a match after retry";
            m_ignoredFiles.append(url);
            completion(url);
            return;
        }
    }
    if (m_retryCount < maximumRetries) {
        qCDebug(lcUserScreenshot).noquote()
            << QStringLiteral("Nothing found after retry nr %1, will try again...").arg(m_retryCount);
        ++m_retryCount;
        m_clock.schedule(
            retryDelay, m_queue,
            [this, alive = std::weak_ptr<int>(m_lifetime), files, completion = std::move(completion)] {
                if (!alive.expired()) {
                    retryFiles(files, completion);
                }
            });
        return;
    }
    qCInfo(lcUserScreenshot).noquote() << QStringLiteral("Nothing found after %1 retries").arg(m_retryCount);
    completion(std::nullopt);
}

UserScreenshotLocator::MatchStatus UserScreenshotLocator::matchStatus(const QUrl& url, bool isRetry) const
{
    const QString path = url.toLocalFile();
    const QFileInfo info(path);
    const QString name = info.fileName();
    if (name.startsWith(QLatin1Char('.')) || !screenshotExtensions.contains(info.suffix().toLower())) {
        return MatchStatus::discard;
    }
    if (!isRetry) {
        if (m_ignoredFiles.contains(url)) {
            return MatchStatus::discard;
        }
        const QDateTime born = info.birthTime().isValid() ? info.birthTime() : info.lastModified();
        if (born.isValid() && born.secsTo(m_clock.currentDateTime()) > maximumAge.count()) {
            return MatchStatus::discard;
        }
    }
    const bool nameMatches = name.startsWith(m_screenshotName);
    // A screenshot is only handed on whole; the marks of one still being written say it will be one.
    const MatchStatus marked = isComplete(path) ? MatchStatus::match : MatchStatus::possible;

    if (hasToolName(name)) {
        return marked;
    }
    if (const auto software = pngSoftware(path)) {
        const QString lower = software->toLower();
        if (std::any_of(screenshotTools.begin(), screenshotTools.end(),
                        [&lower](const QString& tool) { return lower.contains(tool); })) {
            return marked;
        }
    }
    const std::optional<QStringList> attributes = URL::extendedAttributes(url);
    if (!attributes) {
        qCDebug(lcUserScreenshot) << "Failed to obtain extedend attributes, status:" << nameMatches;
        return nameMatches ? MatchStatus::possible : MatchStatus::discard;
    }
    for (const QString& attribute : *attributes) {
        if (screenshotExtendedAttributes.contains(attribute)) {
            return marked;
        }
    }
    return nameMatches ? MatchStatus::possible : MatchStatus::discard;
}

} // namespace Vantrope
