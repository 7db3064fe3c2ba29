// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11TimestampGuard.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "X11Properties.h"

#include <QGuiApplication>
#include <QMimeData>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <xcb/xcb.h>

namespace Vantrope {

X11TimestampGuard* X11TimestampGuard::instance()
{
    static X11TimestampGuard* guard = []() -> X11TimestampGuard* {
        if (!X11Properties::connection()) {
            return nullptr;
        }
        // Lives as long as the process: the application keeps a plain pointer to its filters.
        auto* made = new X11TimestampGuard;
        qGuiApp->installNativeEventFilter(made);
        return made;
    }();
    return guard;
}

X11TimestampGuard::X11TimestampGuard()
    : m_position(X11Properties::atom("XdndPosition"))
    , m_drop(X11Properties::atom("XdndDrop"))
    , m_dragSelection(X11Properties::atom("XdndSelection"))
{}

X11TimestampGuard::~X11TimestampGuard()
{
    if (m_display) {
        XCloseDisplay(m_display);
    }
}

bool X11TimestampGuard::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    auto* event = static_cast<xcb_generic_event_t*>(message);
    const quint8 type = event->response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST) {
        auto* request = static_cast<xcb_selection_request_event_t*>(message);
        if (request->time != XCB_CURRENT_TIME && isFromTheFuture(request->time)) {
            qCDebug(lcDragSession) << "Ignoring the time" << request->time << "of a data request from window"
                                   << request->requestor << ", it lies in the future";
            if (request->selection == m_dragSelection && answer(*request)) {
                return true;
            }
            request->time = XCB_CURRENT_TIME;
        }
    } else if (type == XCB_CLIENT_MESSAGE) {
        auto* client = static_cast<xcb_client_message_event_t*>(message);
        if (client->format != 32) {
            return false;
        }
        quint32* time = client->type == m_position ? &client->data.data32[3]
                        : client->type == m_drop   ? &client->data.data32[2]
                                                   : nullptr;
        if (time && *time != XCB_CURRENT_TIME && isFromTheFuture(*time)) {
            qCDebug(lcDragSession) << "Ignoring the time" << *time << "of a drag from window"
                                   << client->data.data32[0] << ", it lies in the future";
            *time = m_latestServerTime;
        }
    }
    return false;
}

bool X11TimestampGuard::isFromTheFuture(quint32 time)
{
    if (m_latestServerTime != 0 && !isLater(time, m_latestServerTime)) {
        return false;
    }
    const quint32 now = serverTime();
    if (now == 0) {
        return false;
    }
    m_latestServerTime = now;
    return isLater(time, now);
}

quint32 X11TimestampGuard::serverTime()
{
    if (!m_display) {
        m_display = XOpenDisplay(nullptr);
        if (!m_display) {
            qCWarning(lcDragSession) << "Cannot open a connection to the X server to check times";
            return 0;
        }
        XSetWindowAttributes attributes{};
        attributes.event_mask = PropertyChangeMask;
        m_window = XCreateWindow(m_display, DefaultRootWindow(m_display), -10, -10, 1, 1, 0, 0, InputOnly,
                                 CopyFromParent, CWEventMask, &attributes);
        m_property = XInternAtom(m_display, "VANTROPE_SERVER_TIME", False);
    }
    // Appending nothing changes nothing but still makes the server report the time of the change.
    XChangeProperty(m_display, m_window, m_property, XA_STRING, 8, PropModeAppend, nullptr, 0);
    XEvent event;
    XWindowEvent(m_display, m_window, PropertyChangeMask, &event);
    return quint32(event.xproperty.time);
}

namespace {

QByteArray atomName(xcb_connection_t* connection, xcb_atom_t atom)
{
    xcb_get_atom_name_reply_t* reply =
        xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr);
    if (!reply) {
        return {};
    }
    const QByteArray name(xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply));
    std::free(reply);
    return name;
}

// More than this would need the incremental transfer, which no drag of shelf items needs.
constexpr qsizetype largestAnswer = 256 * 1024;

} // namespace

bool X11TimestampGuard::answer(const xcb_selection_request_event_t& request)
{
    QMimeData* data = m_dragData.data();
    xcb_connection_t* connection = X11Properties::connection();
    if (!data || !connection) {
        return false;
    }
    const QByteArray target = atomName(connection, request.target);
    // Clients from before the current conventions name no property: the target is the property then.
    const xcb_atom_t property = request.property != XCB_NONE ? request.property : request.target;
    bool answered = false;
    if (target == "TARGETS") {
        QList<quint32> atoms{request.target};
        for (const QString& format : data->formats()) {
            atoms.append(X11Properties::atom(format.toUtf8().constData()));
        }
        if (data->hasText()) {
            atoms.append(X11Properties::atom("UTF8_STRING"));
        }
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, property, XCB_ATOM_ATOM, 32,
                            quint32(atoms.size()), atoms.constData());
        answered = true;
    } else {
        QByteArray bytes;
        if (data->hasFormat(QString::fromUtf8(target))) {
            bytes = data->data(QString::fromUtf8(target));
            answered = true;
        } else if (data->hasText() && (target == "UTF8_STRING" || target == "text/plain;charset=utf-8")) {
            bytes = data->text().toUtf8();
            answered = true;
        }
        if (bytes.size() > largestAnswer) {
            qCWarning(lcDragSession) << "Not answering a request for" << bytes.size() << "bytes of" << target;
            answered = false;
        }
        if (answered) {
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, property,
                                request.target, 8, quint32(bytes.size()), bytes.constData());
        }
    }
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = answered ? property : XCB_NONE;
    xcb_send_event(connection, false, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    xcb_flush(connection);
    return true;
}

} // namespace Vantrope
