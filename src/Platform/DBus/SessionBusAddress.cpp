// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SessionBusAddress.h"

#include <QFile>
#include <unistd.h>

namespace Vantrope {

namespace {

const char* const variable = "DBUS_SESSION_BUS_ADDRESS";
QString s_defaultSocket;

// D-Bus addresses escape every byte outside a small safe set.
QByteArray escaped(const QByteArray& value)
{
    QByteArray result;
    for (const char c : value) {
        const bool safe = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                          c == '-' || c == '_' || c == '/' || c == '.' || c == '\\' || c == '*';
        if (safe) {
            result += c;
        } else {
            result += '%' + QByteArray::number(static_cast<unsigned char>(c), 16).rightJustified(2, '0');
        }
    }
    return result;
}

} // namespace

void SessionBusAddress::preventAutolaunch()
{
    if (!qEnvironmentVariableIsEmpty(variable)) {
        return;
    }
    QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (runtime.isEmpty()) {
        runtime = "/run/user/" + QByteArray::number(::getuid());
    }
    const QByteArray socket = runtime + "/bus";
    s_defaultSocket = QFile::decodeName(socket);
    qputenv(variable, "unix:path=" + escaped(socket));
}

QString SessionBusAddress::describe()
{
    if (!s_defaultSocket.isEmpty()) {
        return QStringLiteral("DBUS_SESSION_BUS_ADDRESS is not set and no bus listens at %1")
            .arg(s_defaultSocket);
    }
    return QStringLiteral("DBUS_SESSION_BUS_ADDRESS is %1").arg(qEnvironmentVariable(variable));
}

} // namespace Vantrope
