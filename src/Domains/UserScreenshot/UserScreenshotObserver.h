// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DirectoryObserver/DirectoryWatcher.h"
#include "Libraries/Core/BookmarkStore.h"
#include "Libraries/Core/Throttler.h"
#include "UserScreenshotLocator.h"

#include <expected>
#include <functional>
#include <memory>
#include <QObject>
#include <variant>

namespace Vantrope {

// Watches the folder where screenshots are saved and hands each new screenshot to `changeHandler`, on
// the main thread. The folder is the one entry of its bookmark store. Main thread only.
class UserScreenshotObserver final : public QObject {
    Q_OBJECT
public:
    enum class ValidationError { missingDirectory, nonExistingDirectory, inaccessibleDirectory, underlying };
    enum class ObserverError { failedStarting };
    struct Failed {
        ValidationError error;
    };
    struct Stopped {};
    struct Active {};
    using Status = std::variant<Failed, Stopped, Active>;
    using ChangeHandler = std::function<void(const QUrl&)>;

    static constexpr std::chrono::milliseconds throttleDelay{500};

    UserScreenshotObserver(BookmarkStore& bookmarkStore, DirectoryWatcher& watcher, Clock& clock,
                           const QString& language = {}, QObject* parent = nullptr);
    ~UserScreenshotObserver() override;

    void setChangeHandler(ChangeHandler handler) { m_changeHandler = std::move(handler); }
    const Status& status() const { return m_status; }
    bool isActive() const { return std::holds_alternative<Active>(m_status); }

    // The folder in the bookmark store, if any.
    std::optional<QUrl> directory() const;
    std::expected<void, ValidationError> validateDirectory() const;
    std::expected<void, std::variant<ValidationError, ObserverError>> start();
    void stop();
    // Stores the folder in place of the one before; `start()` again to watch it.
    void changeDirectory(const QUrl& url);

    static QString message(ValidationError error);
    // Where the desktop's screenshot tools save: "Screenshots" in the pictures folder when it exists, else
    // the pictures folder itself.
    static QString defaultDirectory();

private:
    void directoryChanged();

    ChangeHandler m_changeHandler;
    BookmarkStore& m_bookmarkStore;
    DirectoryWatcher& m_watcher;
    Status m_status = Stopped{};
    UserScreenshotLocator m_locator;
    Throttler m_throttler;
    std::unique_ptr<DirectoryWatcher::Watch> m_watch;
    QUrl m_watchedDirectory;
};

} // namespace Vantrope
