// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QString>

namespace Vantrope {

// Launch at login through an XDG autostart entry, which every freedesktop session reads at login.
class Launcher final {
public:
    struct Error {
        QString reason;
    };

    // `autostartDirectory` empty for $XDG_CONFIG_HOME/autostart; `program` empty for this executable.
    explicit Launcher(QString autostartDirectory = {}, QString program = {});

    QString entryPath() const;
    bool isLaunchAtLoginEnabled() const;
    // Writes the entry, replacing one that names another program.
    std::expected<void, Error> enableLaunchAtLogin() const;
    std::expected<void, Error> disableLaunchAtLogin() const;

    QByteArray entry() const;
    // `program` as one argument of an Exec line, quoted only when it has to be.
    static QString execArgument(const QString& program);

private:
    QString m_directory;
    QString m_program;
};

} // namespace Vantrope
