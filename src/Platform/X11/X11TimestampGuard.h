// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QAbstractNativeEventFilter>
#include <QMimeData>
#include <QPointer>

struct xcb_selection_request_event_t;

struct _XDisplay;

namespace Vantrope {

// X times in requests and XDND messages come from other programs, and some send nonsense (the Unix time
// in seconds, far in the server's future). Qt adopts such a time as its own and then claims selections
// with it, which the server ignores: every later drag out would offer nothing. This filter puts the
// server's idea of now in place of any time from the future before Qt sees it. Qt also tells which drag
// a request for drag data belongs to by its time alone, so the guard answers such requests itself from
// the data of the program's latest drag.
class X11TimestampGuard final : public QAbstractNativeEventFilter {
public:
    // The guard of the process, installed on first use; null unless the application runs on xcb.
    static X11TimestampGuard* instance();

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    // The data of the drag the program starts now; it answers requests whose time cannot be trusted.
    void setDragData(QMimeData* data) { m_dragData = data; }

    // Whether time a comes after time b, across the wrap of the 32-bit millisecond clock.
    static bool isLater(quint32 a, quint32 b) { return qint32(a - b) > 0; }

private:
    X11TimestampGuard();
    ~X11TimestampGuard() override;

    // Whether a time is later than the server's now, asked of the server only when the time is later
    // than anything it said before.
    bool isFromTheFuture(quint32 time);
    // The server's time now, from a property change on a window of the guard's own connection; 0 when
    // the server cannot be asked.
    quint32 serverTime();
    // Answers a request for the drag's data with the drag data given last; false when there is none.
    bool answer(const xcb_selection_request_event_t& request);

    const quint32 m_position;
    const quint32 m_drop;
    const quint32 m_dragSelection;
    QPointer<QMimeData> m_dragData;
    _XDisplay* m_display = nullptr;
    unsigned long m_window = 0;
    unsigned long m_property = 0;
    quint32 m_latestServerTime = 0;
};

} // namespace Vantrope
