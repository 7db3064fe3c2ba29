// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DesktopWallpaper.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"

#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace Vantrope {

namespace {

std::expected<QString, QString> runTool(const QString& program, const QStringList& arguments,
                                        const QProcessEnvironment& environment)
{
    const QString executable = QStandardPaths::findExecutable(program);
    if (executable.isEmpty()) {
        return std::unexpected(
            Localized("wallpaper.error.no-tool", "\"%1\" is not installed, so the wallpaper cannot be set.")
                .arg(program));
    }
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(executable, arguments);
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished(1000);
        return std::unexpected(Localized("wallpaper.error.timeout", "The desktop did not answer in time."));
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        const QString error = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
        qCWarning(lcFileOperations).noquote() << program << "failed:" << error;
        return std::unexpected(Localized("wallpaper.error.failed", "The desktop refused the wallpaper: %1")
                                   .arg(error.section(QLatin1Char('\n'), -1)));
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

// JavaScript string literal for Plasma's shell script.
QString scriptString(const QString& text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

} // namespace

DesktopWallpaper::Desktop DesktopWallpaper::detect(const QProcessEnvironment& environment)
{
    const QStringList desktops =
        environment.value(QStringLiteral("XDG_CURRENT_DESKTOP")).toUpper().split(QLatin1Char(':'));
    if (desktops.contains(QStringLiteral("KDE"))) {
        return Desktop::plasma;
    }
    if (desktops.contains(QStringLiteral("XFCE"))) {
        return Desktop::xfce;
    }
    return Desktop::gnome;
}

std::expected<void, QString> DesktopWallpaper::set(const QString& imagePath, Desktop desktop,
                                                   const QProcessEnvironment& environment)
{
    const QString uri = QUrl::fromLocalFile(imagePath).toString(QUrl::FullyEncoded);
    switch (desktop) {
    case Desktop::plasma: {
        const QString script =
            QStringLiteral("desktops().forEach(d => { d.wallpaperPlugin = \"org.kde.image\"; "
                           "d.currentConfigGroup = [\"Wallpaper\", \"org.kde.image\", \"General\"]; "
                           "d.writeConfig(\"Image\", %1); });")
                .arg(scriptString(uri));
        const auto result =
            runTool(QStringLiteral("gdbus"),
                    {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                     QStringLiteral("org.kde.plasmashell"), QStringLiteral("--object-path"),
                     QStringLiteral("/PlasmaShell"), QStringLiteral("--method"),
                     QStringLiteral("org.kde.PlasmaShell.evaluateScript"), script},
                    environment);
        if (!result) {
            return std::unexpected(result.error());
        }
        return {};
    }
    case Desktop::xfce: {
        const auto listed = runTool(
            QStringLiteral("xfconf-query"),
            {QStringLiteral("-c"), QStringLiteral("xfce4-desktop"), QStringLiteral("-l")}, environment);
        if (!listed) {
            return std::unexpected(listed.error());
        }
        bool setAny = false;
        for (const QString& property : listed->split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            if (!property.endsWith(QLatin1String("/last-image"))) {
                continue;
            }
            const auto result =
                runTool(QStringLiteral("xfconf-query"),
                        {QStringLiteral("-c"), QStringLiteral("xfce4-desktop"), QStringLiteral("-p"),
                         property.trimmed(), QStringLiteral("-s"), imagePath},
                        environment);
            if (!result) {
                return std::unexpected(result.error());
            }
            setAny = true;
        }
        if (!setAny) {
            return std::unexpected(
                Localized("wallpaper.error.xfce-no-monitor", "The Xfce desktop lists no background to set."));
        }
        return {};
    }
    case Desktop::gnome:
        for (const QString& key : {QStringLiteral("picture-uri"), QStringLiteral("picture-uri-dark")}) {
            const auto result =
                runTool(QStringLiteral("gsettings"),
                        {QStringLiteral("set"), QStringLiteral("org.gnome.desktop.background"), key, uri},
                        environment);
            // Older schemas have no dark picture; the light one is enough there.
            if (!result && key == QLatin1String("picture-uri")) {
                return std::unexpected(result.error());
            }
        }
        return {};
    }
    return {};
}

} // namespace Vantrope
