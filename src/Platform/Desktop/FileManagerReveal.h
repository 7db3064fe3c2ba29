// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
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

    static std::expected<void, Error> reveal(const QList<QUrl>& urls);
};

} // namespace Vantrope
