// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QString>
#include <QStringList>

namespace Vantrope {

// The file-transfer portal of xdg-desktop-portal: a sandboxed program cannot open the paths of a
// "text/uri-list", but it can take files the portal has been given, under a key that travels with the
// drag as `mimeType`.
class FileTransferPortal final {
public:
    static inline const QString mimeType = QStringLiteral("application/vnd.portal.filetransfer");
    static inline const QString service = QStringLiteral("org.freedesktop.portal.Documents");
    static inline const QString objectPath = QStringLiteral("/org/freedesktop/portal/documents");
    static inline const QString interface = QStringLiteral("org.freedesktop.portal.FileTransfer");

    // Hands the files to the portal for one transfer and answers its key; absent where no portal runs,
    // when it refuses, or when a file cannot be opened.
    static std::optional<QString> registerFiles(const QStringList& paths);
};

} // namespace Vantrope
