// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileManagerReveal.h"

#include "DesktopApplications.h"
#include "DesktopLogging.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFileInfo>
#include <QThreadPool>

namespace Vantrope {

namespace {

bool showItems(const QList<QUrl>& urls)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return false;
    }
    // Asking who owns the name does not start a file manager that is only activatable. Asked with a
    // plain message rather than the connection's interface object, which belongs to the main thread.
    QDBusMessage owner = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    owner << FileManagerReveal::serviceName;
    const QDBusMessage owned = bus.call(owner, QDBus::Block, 2000);
    if (owned.type() != QDBusMessage::ReplyMessage || !owned.arguments().value(0).toBool()) {
        return false;
    }
    QStringList uris;
    for (const QUrl& url : urls) {
        uris.append(QString::fromUtf8(url.toEncoded()));
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        FileManagerReveal::serviceName, QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << uris << QString();
    const QDBusMessage reply = bus.call(call, QDBus::Block, 10000);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        qCWarning(lcDesktop).noquote()
            << QStringLiteral("The file manager did not show the items: ") + reply.errorMessage();
        return false;
    }
    return true;
}

} // namespace

std::expected<void, FileManagerReveal::Error> FileManagerReveal::reveal(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) {
            return std::unexpected(Error{QStringLiteral("not a local file: ") + url.toString()});
        }
    }
    if (urls.isEmpty() || showItems(urls)) {
        return {};
    }
    qCInfo(lcDesktop) << "No file manager shows items over D-Bus; opening the folders that hold them";
    QStringList folders;
    for (const QUrl& url : urls) {
        const QString folder = QFileInfo(QDir::cleanPath(url.toLocalFile())).absolutePath();
        if (!folders.contains(folder)) {
            folders.append(folder);
        }
    }
    for (const QString& folder : folders) {
        const auto opened = DesktopApplications::launchDefault(QUrl::fromLocalFile(folder));
        if (!opened) {
            return std::unexpected(Error{opened.error().description});
        }
    }
    return {};
}

void FileManagerReveal::revealInBackground(const QList<QUrl>& urls,
                                           std::function<void(const Result&)> completion)
{
    QThreadPool::globalInstance()->start([urls, completion = std::move(completion)] {
        const Result result = reveal(urls);
        if (completion) {
            completion(result);
        }
    });
}

} // namespace Vantrope
