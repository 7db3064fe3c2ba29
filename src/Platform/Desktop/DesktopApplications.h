// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <optional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// An application installed on the desktop, as its .desktop file describes it.
struct DesktopApplication {
    // The desktop file's id, "org.example.Viewer.desktop".
    QString id;
    QString name;
    // An icon-theme name, or the path of an icon file.
    QString iconName;

    bool operator==(const DesktopApplication&) const = default;
};

// The desktop's applications and which of them open what, through GIO. Safe on any thread.
class DesktopApplications final {
public:
    struct Error {
        QString description;
    };

    // The file's MIME type, by its name and contents; a folder is "inode/directory".
    static QString mimeTypeOf(const QUrl& url);
    // The application a double click in the file manager would open it with.
    static std::optional<DesktopApplication> defaultFor(const QUrl& url);
    // The applications that take every one of the files, in the order of the first file's list (its
    // default first).
    static QList<DesktopApplication> commonTo(const QList<QUrl>& urls);

    static std::expected<void, Error> launchDefault(const QUrl& url);
    // Opens all of `urls` with the application whose desktop file's id is `desktopId`.
    static std::expected<void, Error> launch(const QString& desktopId, const QList<QUrl>& urls);
};

} // namespace Vantrope
