// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QByteArray>
#include <QString>

namespace Vantrope {

// Writes whole files so that a reader sees either the old or the new content, never a torn one.
class AtomicFileWriter final {
public:
    struct Error {
        QString path;
        QString reason;
        QString description() const;
    };

    // Creates missing parent folders (mode 0700) and replaces `path` with `data` (mode 0600) in one rename.
    static std::expected<void, Error> write(const QString& path, const QByteArray& data);

    // Moves an unreadable file out of the way so that the next write cannot destroy what the user
    // may still want to recover. Returns the new path, or an empty string when nothing was moved.
    static QString setAside(const QString& path);
};

} // namespace Vantrope
