// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "Libraries/Core/DispatchQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Tells which file in the screenshot folder is a screenshot that just arrived. No Linux screenshot tool
// marks its files the same way, so a file is a screenshot by any one of: a screenshot attribute, a PNG
// "Software" text naming a screenshot tool, or a name in a known tool's whole pattern with its time stamp.
// A file that only begins with the localized word for a screenshot, or that is not completely written
// yet, is possible: it is looked at again a few times before it is dropped.
class UserScreenshotLocator final {
public:
    enum class MatchStatus { discard, possible, match };
    using Completion = std::function<void(const std::optional<QUrl>&)>;

    static constexpr std::chrono::milliseconds firstRetryDelay{500};
    static constexpr std::chrono::milliseconds retryDelay{750};
    static constexpr int maximumRetries = 3;
    // A file older than this on its first look is no new screenshot.
    static constexpr std::chrono::seconds maximumAge{5};

    // `language` picks the localized first word; empty for the system's language.
    explicit UserScreenshotLocator(Clock& clock, const QString& language = {});
    ~UserScreenshotLocator();
    UserScreenshotLocator(const UserScreenshotLocator&) = delete;
    UserScreenshotLocator& operator=(const UserScreenshotLocator&) = delete;

    // Scans `directory` on the locator's own queue; `completion` runs there too, once, with the first
    // screenshot found or with nothing.
    void locateScreenshot(const QUrl& directory, Completion completion);

    MatchStatus matchStatus(const QUrl& url, bool isRetry) const;

    // The first word or words of a screenshot's name in `language` ("en" when unknown).
    static QString localizedScreenshotName(const QString& language);
    // True when the whole name is what a known tool gives a screenshot.
    static bool hasToolName(const QString& fileName);
    // The PNG's "Software" text, when it has one before its image data.
    static std::optional<QString> pngSoftware(const QString& path);
    // False for a PNG or JPEG whose end is not written yet.
    static bool isComplete(const QString& path);

private:
    void scan(Completion completion);
    void retryFiles(const QList<QUrl>& files, Completion completion);

    Clock& m_clock;
    QString m_screenshotName;
    // Touched on m_queue only, apart from the first step of each call.
    QList<QUrl> m_ignoredFiles;
    std::optional<QUrl> m_lastDirectory;
    int m_retryCount = 0;
    std::shared_ptr<int> m_lifetime = std::make_shared<int>();
    DispatchQueue m_queue{QStringLiteral("com.vantropeapp.com.screenshot-locator")};
};

} // namespace Vantrope
