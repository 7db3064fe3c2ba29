// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Activation/DragMonitor.h"

#include <expected>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <vector>

class QSocketNotifier;

namespace Vantrope {

// Sees the drags of every X11 client through a connection of its own: XInput 2.2 raw button and motion
// events on the root window (raw events still arrive while a drag source holds the pointer grab), the
// owner changes of XdndSelection through XFixes as the drag pasteboard's change count, and the window
// properties that name an application. The pointer is asked for only while button 1 is down, and motion
// is selected only then, so the monitor sleeps while the user is not dragging. Main thread only.
class X11DragMonitor final : public QObject, public DragMonitor {
    Q_OBJECT

public:
    // Fails, with the reason, when the display cannot be reached or lacks XInput 2.2 or XFixes.
    static std::expected<std::unique_ptr<X11DragMonitor>, QString> open(const QByteArray& displayName);
    ~X11DragMonitor() override;

    bool isAvailable() const override { return true; }
    QString unavailableReason() const override { return {}; }
    QPointF mouseLocation() override;
    qint64 dragPasteboardChangeCount() override { return m_dragPasteboardChangeCount; }
    std::vector<WindowEntry> windowList() override;

    // Handles everything the server has sent. The socket notifier calls it; so may a caller that knows
    // events are waiting.
    void dispatchPendingEvents();
    // The connection's socket, for callers that wait on it.
    int connectionNumber() const;

private:
    struct Connection;
    struct PointerState;

    explicit X11DragMonitor(std::unique_ptr<Connection> connection);

    void selectRootEvents(bool withMotion);
    void buttonPressed(int device);
    void buttonReleased();
    void deliverDrag();
    void resolvePressWindow();
    std::optional<PointerState> queryPointer(int device) const;
    QPointF toPoints(QPointF rootPixels) const;
    quint64 clientWindow(quint64 topLevel) const;
    QString ownerName(quint64 window) const;
    bool isDock(quint64 window) const;
    std::optional<qint64> processId(quint64 window) const;
    bool hasProperty(quint64 window, quint64 property) const;
    std::vector<quint64> propertyValues(quint64 window, quint64 property, quint64 type, long maximum) const;
    void refreshButtonMap();
    int logicalButton(int physical) const;
    // Requests made outside the dispatch loop can leave events read but not handled; the socket would
    // not wake us for them.
    void dispatchLaterIfQueued();

    std::unique_ptr<Connection> m_x;
    QSocketNotifier* m_notifier = nullptr;
    qint64 m_dragPasteboardChangeCount = 0;
    std::vector<unsigned char> m_buttonMap;

    // The press of button 1 being followed, if any.
    bool m_buttonDown = false;
    int m_pressDevice = 0;
    quint64 m_pressTopLevel = 0;
    quint64 m_pressWindow = 0;
    bool m_pressResolved = false;
    // Our own windows: a global monitor reports other applications' events only.
    bool m_ownDrag = false;
    QPointF m_lastPosition;
    EventModifierFlags m_lastModifiers;
};

} // namespace Vantrope
