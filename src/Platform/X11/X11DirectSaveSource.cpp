// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11DirectSaveSource.h"

#include "X11Properties.h"

#include <cstdlib>
#include <QSysInfo>
#include <QUrl>
#include <xcb/xcb.h>

namespace Vantrope {

namespace {

// The window of this program that owns the drag selection, 0 when another program's does.
quint32 dragWindow()
{
    xcb_connection_t* connection = X11Properties::connection();
    if (!connection) {
        return 0;
    }
    xcb_get_selection_owner_reply_t* reply = xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, X11Properties::atom("XdndSelection")), nullptr);
    const quint32 owner = reply ? reply->owner : 0;
    std::free(reply);
    const xcb_setup_t* setup = xcb_get_setup(connection);
    return (owner & ~setup->resource_id_mask) == setup->resource_id_base ? owner : 0;
}

} // namespace

bool X11DirectSaveSource::announce(const QString& fileName)
{
    const quint32 window = dragWindow();
    if (!window) {
        return false;
    }
    X11Properties::write(window, X11Properties::atom("XdndDirectSave0"), X11Properties::atom("text/plain"),
                         fileName.toUtf8());
    X11Properties::flush();
    return true;
}

std::optional<QString> X11DirectSaveSource::destination()
{
    const quint32 window = dragWindow();
    const std::optional<QByteArray> value =
        window ? X11Properties::read(window, X11Properties::atom("XdndDirectSave0")) : std::nullopt;
    if (!value) {
        return std::nullopt;
    }
    QByteArray uri = value->trimmed();
    // pcmanfm ends the URI with a NUL; one inside it would cut the path short where files are opened.
    while (uri.endsWith('\0')) {
        uri.chop(1);
    }
    if (uri.contains('\0')) {
        return std::nullopt;
    }
    QUrl url = QUrl::fromEncoded(uri);
    // Some file managers name this machine in the URI.
    if (url.host() == QLatin1String("localhost") || url.host() == QSysInfo::machineHostName()) {
        url.setHost(QString());
    }
    if (!url.isLocalFile() || !url.host().isEmpty()) {
        return std::nullopt;
    }
    return url.toLocalFile();
}

} // namespace Vantrope
