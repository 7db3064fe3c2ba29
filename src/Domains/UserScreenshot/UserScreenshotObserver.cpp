// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UserScreenshotObserver.h"

#include "Libraries/Core/Localized.h"
#include "UserScreenshotLogging.h"

#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <unistd.h>

namespace Vantrope {

UserScreenshotObserver::UserScreenshotObserver(BookmarkStore& bookmarkStore, DirectoryWatcher& watcher,
                                               Clock& clock, const QString& language, QObject* parent)
    : QObject(parent)
    , m_bookmarkStore(bookmarkStore)
    , m_watcher(watcher)
    , m_locator(clock, language)
    , m_throttler(throttleDelay, DispatchQueue::main(), clock)
{}

UserScreenshotObserver::~UserScreenshotObserver()
{
    m_throttler.cancel();
}

std::optional<QUrl> UserScreenshotObserver::directory() const
{
    const QList<BookmarkURL> bookmarks = m_bookmarkStore.bookmarks();
    if (bookmarks.isEmpty()) {
        return std::nullopt;
    }
    return bookmarks.first().url;
}

std::expected<void, UserScreenshotObserver::ValidationError> UserScreenshotObserver::validateDirectory() const
{
    const std::optional<QUrl> folder = directory();
    if (!folder) {
        qCInfo(lcUserScreenshot) << "No bookmarked directory";
        return std::unexpected(ValidationError::missingDirectory);
    }
    const QString path = folder->toLocalFile();
    if (!QFileInfo(path).isDir()) {
        qCInfo(lcUserScreenshot) << "Bookmark directory does not exist on disk";
        return std::unexpected(ValidationError::nonExistingDirectory);
    }
    if (::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK | X_OK, AT_EACCESS) != 0) {
        qCInfo(lcUserScreenshot) << "Bookmark directory is inaccessible by Vantrope";
        return std::unexpected(ValidationError::inaccessibleDirectory);
    }
    return {};
}

std::expected<void,
              std::variant<UserScreenshotObserver::ValidationError, UserScreenshotObserver::ObserverError>>
UserScreenshotObserver::start()
{
    if (const auto valid = validateDirectory(); !valid) {
        m_status = Failed{valid.error()};
        qCWarning(lcUserScreenshot).noquote()
            << QStringLiteral("Failed to start with validation error: ") + message(valid.error());
        return std::unexpected(valid.error());
    }
    const QUrl folder = *directory();
    auto watch = m_watcher.watch(folder.toLocalFile(), [self = QPointer<UserScreenshotObserver>(this)] {
        // The watcher's thread: the throttle takes it to the main queue.
        if (self) {
            self->m_throttler.throttle([self] {
                if (self) {
                    self->directoryChanged();
                }
            });
        }
    });
    if (!watch) {
        m_status = Failed{ValidationError::underlying};
        qCWarning(lcUserScreenshot).noquote()
            << QStringLiteral("Failed to start with error: ") + watch.error().description();
        return std::unexpected(ObserverError::failedStarting);
    }
    m_watch = std::move(*watch);
    m_watchedDirectory = folder;
    qCInfo(lcUserScreenshot) << "Successfully started screenshot observer";
    m_status = Active{};
    return {};
}

void UserScreenshotObserver::stop()
{
    m_throttler.cancel();
    m_watch.reset();
    m_status = Stopped{};
}

void UserScreenshotObserver::changeDirectory(const QUrl& url)
{
    qCInfo(lcUserScreenshot).noquote() << QStringLiteral("Changing directory to ") + url.toString();
    if (!m_bookmarkStore.addLocation(url)) {
        qCWarning(lcUserScreenshot) << "Failed to add location, most likely a bookmark couldn't be obtained";
        return;
    }
    qCInfo(lcUserScreenshot).noquote()
        << QStringLiteral("Changed directory to %1. Store count should be 1, it is %2")
               .arg(url.toString())
               .arg(m_bookmarkStore.bookmarks().size());
}

void UserScreenshotObserver::directoryChanged()
{
    if (!isActive()) {
        return;
    }
    m_locator.locateScreenshot(m_watchedDirectory, [self = QPointer<UserScreenshotObserver>(this)](
                                                       const std::optional<QUrl>& found) {
        if (!found) {
            return;
        }
        DispatchQueue::main().async([self, url = *found] {
            if (self && self->isActive() && self->m_changeHandler) {
                self->m_changeHandler(url);
            }
        });
    });
}

QString UserScreenshotObserver::message(ValidationError error)
{
    switch (error) {
    case ValidationError::missingDirectory:
        return Localized("validation-error.missing-directory", "No folder for screenshots is chosen.");
    case ValidationError::nonExistingDirectory:
        return Localized("validation-error.non-existing-directory",
                         "The folder for screenshots does not exist.");
    case ValidationError::inaccessibleDirectory:
        return Localized("validation-error.inaccessible-directory",
                         "Vantrope cannot read the folder for screenshots.");
    case ValidationError::underlying:
        break;
    }
    return Localized("validation-error.underlying", "The folder for screenshots cannot be watched.");
}

QString UserScreenshotObserver::defaultDirectory()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString screenshots = pictures + QStringLiteral("/Screenshots");
    return QFileInfo(screenshots).isDir() ? screenshots : pictures;
}

} // namespace Vantrope
