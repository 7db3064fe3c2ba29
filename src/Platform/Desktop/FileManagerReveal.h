// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// Shows files in the file manager, selected where it can: through the file manager's D-Bus interface
// (org.freedesktop.FileManager1) when one owns it on the session bus, else by opening the folders that
// hold them with their default application.
class FileManagerReveal final {
public:
    struct Error {
        QString description;
    };

    static inline const QString serviceName = QStringLiteral("org.freedesktop.FileManager1");

    using Result = std::expected<void, Error>;

    // Blocks while the file manager answers (at most ten seconds); for tests and worker threads.
    static Result reveal(const QList<QUrl>& urls);
    // The same on a worker thread, so that a file manager that hangs never holds up a shelf. The
    // completion, if any, is called on that thread.
    static void revealInBackground(const QList<QUrl>& urls,
                                   std::function<void(const Result&)> completion = {});
};

} // namespace Vantrope
