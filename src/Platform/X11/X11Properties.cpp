// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11Properties.h"

#include <cstring>
#include <QGuiApplication>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>

namespace Vantrope {

namespace {

struct PropertyReply {
    QByteArray value;
    quint32 type = 0;
    quint8 format = 0;
};

std::optional<PropertyReply> readProperty(quint32 window, quint32 property)
{
    xcb_connection_t* connection = X11Properties::connection();
    if (!connection || !window || !property) {
        return std::nullopt;
    }
    PropertyReply result;
    quint32 offset = 0;
    // Long values come in pieces; 64 KiB of 32-bit units per request.
    for (;;) {
        const auto cookie =
            xcb_get_property(connection, false, window, property, XCB_GET_PROPERTY_TYPE_ANY, offset, 16384);
        xcb_get_property_reply_t* reply = xcb_get_property_reply(connection, cookie, nullptr);
        if (!reply) {
            return std::nullopt;
        }
        if (reply->type == XCB_NONE) {
            std::free(reply);
            return std::nullopt;
        }
        const int length = xcb_get_property_value_length(reply);
        result.value.append(static_cast<const char*>(xcb_get_property_value(reply)), length);
        result.type = reply->type;
        result.format = reply->format;
        const quint32 remaining = reply->bytes_after;
        std::free(reply);
        if (remaining == 0 || length == 0) {
            return result;
        }
        offset += static_cast<quint32>(length) / 4;
    }
}

} // namespace

xcb_connection_t* X11Properties::connection()
{
    auto* application = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return application ? application->connection() : nullptr;
}

quint32 X11Properties::rootWindow()
{
    xcb_connection_t* c = connection();
    if (!c) {
        return 0;
    }
    const xcb_setup_t* setup = xcb_get_setup(c);
    const xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    return screens.rem > 0 ? screens.data->root : 0;
}

quint32 X11Properties::atom(const char* name)
{
    static QMutex mutex;
    static QHash<QByteArray, quint32> atoms;
    QMutexLocker lock(&mutex);
    const QByteArray key(name);
    if (const auto found = atoms.constFind(key); found != atoms.cend()) {
        return *found;
    }
    xcb_connection_t* c = connection();
    if (!c) {
        return 0;
    }
    const auto cookie = xcb_intern_atom(c, false, static_cast<uint16_t>(key.size()), key.constData());
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(c, cookie, nullptr);
    const quint32 value = reply ? reply->atom : 0;
    std::free(reply);
    if (value) {
        atoms.insert(key, value);
    }
    return value;
}

std::optional<QByteArray> X11Properties::read(quint32 window, quint32 property)
{
    auto reply = readProperty(window, property);
    if (!reply) {
        return std::nullopt;
    }
    return std::move(reply->value);
}

std::optional<QList<quint32>> X11Properties::read32(quint32 window, quint32 property)
{
    const auto reply = readProperty(window, property);
    if (!reply || reply->format != 32) {
        return std::nullopt;
    }
    QList<quint32> values(reply->value.size() / 4);
    std::memcpy(values.data(), reply->value.constData(), values.size() * 4);
    return values;
}

void X11Properties::write(quint32 window, quint32 property, quint32 type, const QByteArray& value)
{
    if (xcb_connection_t* c = connection(); c && window) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, property, type, 8,
                            static_cast<quint32>(value.size()), value.constData());
    }
}

void X11Properties::write32(quint32 window, quint32 property, quint32 type, const QList<quint32>& values)
{
    if (xcb_connection_t* c = connection(); c && window) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                            static_cast<quint32>(values.size()), values.constData());
    }
}

void X11Properties::sendToRoot(quint32 window, quint32 type, const QList<quint32>& data)
{
    xcb_connection_t* c = connection();
    if (!c) {
        return;
    }
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    for (qsizetype i = 0; i < qMin<qsizetype>(data.size(), 5); ++i) {
        event.data.data32[i] = data.at(i);
    }
    xcb_send_event(c, false, rootWindow(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

void X11Properties::flush()
{
    if (xcb_connection_t* c = connection()) {
        xcb_flush(c);
    }
}

} // namespace Vantrope
