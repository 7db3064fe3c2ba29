// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShareTargets.h"

#include "DesktopLogging.h"
#include "Libraries/Core/Localized.h"

#include <chrono>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QProcess>
#include <QStandardPaths>

namespace Vantrope {

namespace {

constexpr std::chrono::milliseconds busTimeout{5000};

QStringList localPaths(const QList<QUrl>& urls)
{
    QStringList paths;
    for (const QUrl& url : urls) {
        paths.append(url.toLocalFile());
    }
    return paths;
}

// Starts `program` on its own; it outlives us and its window is the rest of the conversation.
std::expected<void, QString> startProgram(const QString& program, const QStringList& arguments)
{
    if (!QProcess::startDetached(program, arguments)) {
        return std::unexpected(
            Localized("action.share.error.program", "%1 could not be started").arg(program));
    }
    return {};
}

QDBusMessage callDevice(const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(ShareTargets::kdeConnectService, path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call, QDBus::Block, int(busTimeout.count()));
}

QString devicePath(const QString& id)
{
    return QStringLiteral("/modules/kdeconnect/devices/") + id;
}

} // namespace

QList<ShareTarget> ShareTargets::available()
{
    QList<ShareTarget> targets;
    if (auto target = email()) {
        targets.append(*target);
    }
    targets.append(kdeConnectDevices());
    if (auto target = bluetooth()) {
        targets.append(*target);
    }
    return targets;
}

std::optional<ShareTarget> ShareTargets::email()
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("xdg-email"));
    if (program.isEmpty()) {
        return std::nullopt;
    }
    return ShareTarget{QStringLiteral("email"), Localized("action.share.email.title", "Email"),
                       QStringLiteral("mail-send"),
                       [program](const QList<QUrl>& urls, const ShareTarget::Done& done) {
                           QStringList arguments;
                           for (const QString& path : localPaths(urls)) {
                               arguments << QStringLiteral("--attach") << path;
                           }
                           done(startProgram(program, arguments));
                       }};
}

QList<ShareTarget> ShareTargets::kdeConnectDevices()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface() ||
        !bus.interface()->isServiceRegistered(kdeConnectService).value()) {
        return {};
    }
    const QDBusMessage listed =
        callDevice(QStringLiteral("/modules/kdeconnect"), QStringLiteral("org.kde.kdeconnect.daemon"),
                   QStringLiteral("devices"), {true, true});
    if (listed.type() != QDBusMessage::ReplyMessage || listed.arguments().isEmpty()) {
        qCWarning(lcDesktop).noquote()
            << QStringLiteral("KDE Connect did not list its devices: ") + listed.errorMessage();
        return {};
    }
    QList<ShareTarget> targets;
    const QStringList ids = listed.arguments().first().toStringList();
    for (const QString& id : ids) {
        const QDBusMessage named = callDevice(
            devicePath(id), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
            {QStringLiteral("org.kde.kdeconnect.device"), QStringLiteral("name")});
        QString name;
        if (named.type() == QDBusMessage::ReplyMessage && !named.arguments().isEmpty()) {
            name = named.arguments().first().value<QDBusVariant>().variant().toString();
        }
        if (name.isEmpty()) {
            name = id;
        }
        targets.append(ShareTarget{
            QStringLiteral("kdeconnect_") + id,
            Localized("action.share.kdeconnect.title", "Send to %1").arg(name), QStringLiteral("smartphone"),
            [id, name](const QList<QUrl>& urls, const ShareTarget::Done& done) {
                QStringList uris;
                for (const QUrl& url : urls) {
                    uris.append(QString::fromUtf8(url.toEncoded()));
                }
                QDBusMessage call = QDBusMessage::createMethodCall(
                    kdeConnectService, devicePath(id) + QStringLiteral("/share"),
                    QStringLiteral("org.kde.kdeconnect.device.share"), QStringLiteral("shareUrls"));
                call << uris;
                // The daemon may be slow to answer: the shelf does not wait for it.
                auto* watcher =
                    new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call, int(busTimeout.count())));
                QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, name, done] {
                    watcher->deleteLater();
                    if (watcher->isError()) {
                        done(std::unexpected(
                            Localized("action.share.error.kdeconnect", "%1 did not take the files: %2")
                                .arg(name, watcher->error().message())));
                        return;
                    }
                    done({});
                });
            }});
    }
    return targets;
}

std::optional<ShareTarget> ShareTargets::bluetooth()
{
    const QString title = Localized("action.share.bluetooth.title", "Send via Bluetooth");
    const QString icon = QStringLiteral("bluetooth");
    const QString gnome = QStandardPaths::findExecutable(QStringLiteral("bluetooth-sendto"));
    if (!gnome.isEmpty()) {
        return ShareTarget{QStringLiteral("bluetooth"), title, icon,
                           [gnome](const QList<QUrl>& urls, const ShareTarget::Done& done) {
                               done(startProgram(gnome, localPaths(urls)));
                           }};
    }
    const QString plasma = QStandardPaths::findExecutable(QStringLiteral("bluedevil-sendfile"));
    if (!plasma.isEmpty()) {
        return ShareTarget{QStringLiteral("bluetooth"), title, icon,
                           [plasma](const QList<QUrl>& urls, const ShareTarget::Done& done) {
                               QStringList arguments;
                               for (const QUrl& url : urls) {
                                   arguments << QStringLiteral("-f") << url.toLocalFile();
                               }
                               done(startProgram(plasma, arguments));
                           }};
    }
    return std::nullopt;
}

} // namespace Vantrope
