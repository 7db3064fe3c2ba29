// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <atomic>
#include <QAbstractNativeEventFilter>

namespace Vantrope {

// Qt takes drops but is no X Direct Save target: it never tells which window a drag comes from. This
// filter reads the source window from the XDND messages before Qt handles them, so that a drop can ask
// that window for its promised file.
class X11DragSourceTracker final : public QAbstractNativeEventFilter {
public:
    // The tracker of the process, installed on first use; null unless the application runs on xcb.
    static X11DragSourceTracker* instance();

    // The source window of the drag now over one of the program's windows; 0 when there is none.
    quint32 sourceWindow() const { return m_sourceWindow.load(); }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    X11DragSourceTracker();

    const quint32 m_enter;
    const quint32 m_position;
    const quint32 m_drop;
    const quint32 m_leave;
    std::atomic<quint32> m_sourceWindow = 0;
};

} // namespace Vantrope
