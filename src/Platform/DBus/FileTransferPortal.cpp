// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileTransferPortal.h"

#include "Domains/DragSession/DragSessionLogging.h"

#include <fcntl.h>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <unistd.h>

namespace Vantrope {

namespace {

// The bus refuses messages with many descriptors; the portal's own clients send them in small batches.
constexpr qsizetype descriptorsPerCall = 16;
// A drag is starting: a portal that does not answer at once is not worth the wait.
constexpr int callTimeout = 1000;

// Only a running portal is used: starting one on demand at the beginning of every drag would cost more
// than the drag, and where sandboxed programs run, the desktop has started it already.
bool portalRunning(QDBusConnection& bus)
{
    QDBusMessage ask = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    ask << FileTransferPortal::service;
    const QDBusReply<bool> running = bus.call(ask, QDBus::Block, callTimeout);
    return running.isValid() && running.value();
}

QDBusMessage portalCall(const QString& method)
{
    return QDBusMessage::createMethodCall(FileTransferPortal::service, FileTransferPortal::objectPath,
                                          FileTransferPortal::interface, method);
}

} // namespace

std::optional<QString> FileTransferPortal::registerFiles(const QStringList& paths)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (paths.isEmpty() || !bus.isConnected() || !portalRunning(bus)) {
        return std::nullopt;
    }
    static const QMetaType registered = qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    Q_UNUSED(registered);

    QDBusMessage start = portalCall(QStringLiteral("StartTransfer"));
    start << QVariantMap{{QStringLiteral("writable"), false}, {QStringLiteral("autostop"), true}};
    const QDBusReply<QString> key = bus.call(start, QDBus::Block, callTimeout);
    if (!key.isValid()) {
        qCWarning(lcDragSession).noquote()
            << "File transfer portal refused a transfer:" << key.error().message();
        return std::nullopt;
    }

    for (qsizetype first = 0; first < paths.size(); first += descriptorsPerCall) {
        QList<QDBusUnixFileDescriptor> descriptors;
        for (const QString& path : paths.mid(first, descriptorsPerCall)) {
            // The portal wants descriptors that only name the file, so nothing is read on its behalf.
            const int fd = ::open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC);
            if (fd < 0) {
                qCWarning(lcDragSession).noquote() << "Could not open for the file transfer portal:" << path;
                return std::nullopt;
            }
            descriptors.append(QDBusUnixFileDescriptor(fd));
            ::close(fd);
        }
        QDBusMessage add = portalCall(QStringLiteral("AddFiles"));
        add << key.value() << QVariant::fromValue(descriptors) << QVariantMap();
        const QDBusMessage reply = bus.call(add, QDBus::Block, callTimeout);
        if (reply.type() == QDBusMessage::ErrorMessage) {
            qCWarning(lcDragSession).noquote()
                << "File transfer portal refused files:" << reply.errorMessage();
            return std::nullopt;
        }
    }
    return key.value();
}

} // namespace Vantrope
