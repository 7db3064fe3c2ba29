// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Launcher.h"

#include "Libraries/Core/AtomicFileWriter.h"
#include "Version.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>

namespace Vantrope {

Launcher::Launcher(QString autostartDirectory, QString program)
    : m_directory(std::move(autostartDirectory))
    , m_program(std::move(program))
{
    if (m_directory.isEmpty()) {
        m_directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                      QStringLiteral("/autostart");
    }
    if (m_program.isEmpty()) {
        m_program = QCoreApplication::applicationFilePath();
    }
}

QString Launcher::entryPath() const
{
    return m_directory + QStringLiteral("/" VANTROPE_APPLICATION_ID ".desktop");
}

bool Launcher::isLaunchAtLoginEnabled() const
{
    return QFile::exists(entryPath());
}

QString Launcher::execArgument(const QString& program)
{
    // Quoting escapes " ` $ \ with a backslash, and the value as a whole is unescaped once before the
    // quotes are read, so every such backslash is written twice. A literal % is always %%.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    const bool needsQuotes =
        std::any_of(program.cbegin(), program.cend(), [](QChar c) { return reserved.contains(c); });
    QString argument;
    for (const QChar c : program) {
        if (c == QLatin1Char('\n')) {
            argument += QStringLiteral("\\n");
            continue;
        }
        if (needsQuotes && QStringLiteral("\"`$\\").contains(c)) {
            argument += QStringLiteral("\\\\");
        }
        if (c == QLatin1Char('\\')) {
            argument += QStringLiteral("\\");
        }
        argument += c;
        if (c == QLatin1Char('%')) {
            argument += QLatin1Char('%');
        }
    }
    return needsQuotes ? QLatin1Char('"') + argument + QLatin1Char('"') : argument;
}

QByteArray Launcher::entry() const
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Vantrope\n"
                          "Comment=A floating shelf for the things you drag\n"
                          "Exec=%1\n"
                          "Icon=" VANTROPE_APPLICATION_ID "\n"
                          "Terminal=false\n"
                          "NoDisplay=true\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(execArgument(m_program))
        .toUtf8();
}

std::expected<void, Launcher::Error> Launcher::enableLaunchAtLogin() const
{
    QFile existing(entryPath());
    if (existing.open(QIODevice::ReadOnly) && existing.readAll() == entry()) {
        return {};
    }
    if (const auto written = AtomicFileWriter::write(entryPath(), entry()); !written) {
        return std::unexpected(Error{written.error().description()});
    }
    return {};
}

std::expected<void, Launcher::Error> Launcher::disableLaunchAtLogin() const
{
    QFile file(entryPath());
    if (file.exists() && !file.remove()) {
        return std::unexpected(
            Error{QStringLiteral("cannot remove %1: %2").arg(entryPath(), file.errorString())});
    }
    return {};
}

} // namespace Vantrope
