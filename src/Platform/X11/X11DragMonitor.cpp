// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "X11DragMonitor.h"

#include "Domains/Activation/RecognizerLogging.h"
#include "Platform/ScreenCoordinates.h"

#include <algorithm>
#include <array>
#include <QFile>
#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>
#include <QSet>
#include <QSocketNotifier>
#include <unistd.h>
#include <X11/extensions/Xfixes.h>
#include <X11/extensions/XInput2.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace Vantrope {

namespace {

// Bounds the search for an application's window below a window manager's frame.
constexpr int maximumFrameDepth = 4;
constexpr int maximumWindowsSearched = 64;

XErrorHandler s_previousErrorHandler = nullptr;

QSet<Display*>& ownDisplays()
{
    static QSet<Display*> displays;
    return displays;
}

int ignoreOwnErrors(Display* display, XErrorEvent* error)
{
    // Windows vanish between being found and being read; on our connection that is ordinary. Xlib's
    // default handler would end the process.
    if (ownDisplays().contains(display)) {
        return 0;
    }
    return s_previousErrorHandler ? s_previousErrorHandler(display, error) : 0;
}

EventModifierFlags modifierFlags(int state)
{
    EventModifierFlags flags;
    flags.setFlag(EventModifierFlag::capsLock, state & LockMask);
    flags.setFlag(EventModifierFlag::shift, state & ShiftMask);
    flags.setFlag(EventModifierFlag::control, state & ControlMask);
    flags.setFlag(EventModifierFlag::option, state & Mod1Mask);
    flags.setFlag(EventModifierFlag::command, state & Mod4Mask);
    return flags;
}

} // namespace

struct X11DragMonitor::Connection {
    enum AtomIndex { xdndSelection, wmState, netWmPid, netWmWindowType, netWmWindowTypeDock, atomCount };

    Display* display = nullptr;
    Window root = 0;
    int xiOpcode = 0;
    int fixesEventBase = 0;
    int masterPointer = 0;
    std::array<Atom, atomCount> atoms{};

    ~Connection()
    {
        if (display) {
            XCloseDisplay(display);
            ownDisplays().remove(display);
        }
    }
};

struct X11DragMonitor::PointerState {
    QPointF rootPosition;
    Window child = 0;
    EventModifierFlags modifiers;
};

std::expected<std::unique_ptr<X11DragMonitor>, QString> X11DragMonitor::open(const QByteArray& displayName)
{
    auto connection = std::make_unique<Connection>();
    connection->display = XOpenDisplay(displayName.isEmpty() ? nullptr : displayName.constData());
    Display* display = connection->display;
    if (!display) {
        return std::unexpected(QStringLiteral("the X display \"%1\" cannot be reached")
                                   .arg(QString::fromLocal8Bit(displayName)));
    }
    if (ownDisplays().isEmpty()) {
        // Installed once and left: chaining keeps whatever handler Qt or anyone else set before.
        const XErrorHandler previous = XSetErrorHandler(ignoreOwnErrors);
        if (previous != ignoreOwnErrors) {
            s_previousErrorHandler = previous;
        }
    }
    ownDisplays().insert(display);

    int event = 0;
    int error = 0;
    if (!XQueryExtension(display, "XInputExtension", &connection->xiOpcode, &event, &error)) {
        return std::unexpected(QStringLiteral("no XInput extension"));
    }
    // Announcing 2.2 matters: to a 2.0 client the server sends no raw events while a drag holds the
    // pointer grab.
    int major = 2;
    int minor = 2;
    if (XIQueryVersion(display, &major, &minor) != Success || major < 2 || (major == 2 && minor < 2)) {
        return std::unexpected(QStringLiteral("XInput %1.%2, where 2.2 is needed").arg(major).arg(minor));
    }
    if (!XFixesQueryExtension(display, &connection->fixesEventBase, &error)) {
        return std::unexpected(QStringLiteral("no XFixes extension"));
    }
    int fixesMajor = 1;
    int fixesMinor = 0;
    XFixesQueryVersion(display, &fixesMajor, &fixesMinor);

    std::array<char*, Connection::atomCount> names{
        const_cast<char*>("XdndSelection"), const_cast<char*>("WM_STATE"), const_cast<char*>("_NET_WM_PID"),
        const_cast<char*>("_NET_WM_WINDOW_TYPE"), const_cast<char*>("_NET_WM_WINDOW_TYPE_DOCK")};
    XInternAtoms(display, names.data(), Connection::atomCount, False, connection->atoms.data());
    connection->root = DefaultRootWindow(display);
    // Our connection has no client pointer of its own until it asks for one; the first master pointer
    // is the one that moves.
    int count = 0;
    if (XIDeviceInfo* devices = XIQueryDevice(display, XIAllMasterDevices, &count)) {
        for (int i = 0; i < count; ++i) {
            if (devices[i].use == XIMasterPointer) {
                connection->masterPointer = devices[i].deviceid;
                break;
            }
        }
        XIFreeDeviceInfo(devices);
    }
    if (connection->masterPointer == 0) {
        return std::unexpected(QStringLiteral("no master pointer"));
    }

    return std::unique_ptr<X11DragMonitor>(new X11DragMonitor(std::move(connection)));
}

X11DragMonitor::X11DragMonitor(std::unique_ptr<Connection> connection)
    : m_x(std::move(connection))
{
    refreshButtonMap();
    selectRootEvents(false);
    XFixesSelectSelectionInput(m_x->display, m_x->root, m_x->atoms[Connection::xdndSelection],
                               XFixesSetSelectionOwnerNotifyMask);
    XFlush(m_x->display);

    m_notifier = new QSocketNotifier(ConnectionNumber(m_x->display), QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &X11DragMonitor::dispatchPendingEvents);
    qCDebug(lcRecognizer) << "Watching drags on X display" << DisplayString(m_x->display);
}

X11DragMonitor::~X11DragMonitor() = default;

int X11DragMonitor::connectionNumber() const
{
    return ConnectionNumber(m_x->display);
}

void X11DragMonitor::selectRootEvents(bool withMotion)
{
    std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
    XISetMask(bits.data(), XI_RawButtonPress);
    XISetMask(bits.data(), XI_RawButtonRelease);
    if (withMotion) {
        XISetMask(bits.data(), XI_RawMotion);
    }
    XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
    XISelectEvents(m_x->display, m_x->root, &mask, 1);
}

void X11DragMonitor::dispatchPendingEvents()
{
    Display* display = m_x->display;
    // Motion is coalesced: the pointer query reports where the pointer is now, so one query serves all
    // motion read in one go, and repeating it would report the same point several times.
    bool motion = false;
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == m_x->fixesEventBase + XFixesSelectionNotify) {
            // The drag must be seen before its content: a watch started by that drag event has to read
            // the count from before the change.
            if (motion) {
                deliverDrag();
                motion = false;
            }
            ++m_dragPasteboardChangeCount;
            continue;
        }
        if (event.type == MappingNotify) {
            if (event.xmapping.request == MappingPointer) {
                refreshButtonMap();
            }
            continue;
        }
        if (event.type != GenericEvent || event.xcookie.extension != m_x->xiOpcode) {
            continue;
        }
        const int evtype = event.xcookie.evtype;
        if (evtype == XI_RawMotion) {
            // The type is all that is needed; decoding the valuators would only allocate.
            motion = true;
            continue;
        }
        if (!XGetEventData(display, &event.xcookie)) {
            continue;
        }
        const auto* raw = static_cast<const XIRawEvent*>(event.xcookie.data);
        const int device = raw->deviceid;
        const int button = logicalButton(raw->detail);
        XFreeEventData(display, &event.xcookie);

        if (evtype == XI_RawButtonPress && button == 1) {
            motion = false;
            buttonPressed(device);
        } else if (evtype == XI_RawButtonRelease && button == 1) {
            if (motion) {
                deliverDrag();
                motion = false;
            }
            buttonReleased();
        }
    }
    if (motion) {
        deliverDrag();
    }
}

void X11DragMonitor::buttonPressed(int device)
{
    if (!isMonitored(GlobalMouseEvent::Type::leftMouseDragged) &&
        !isMonitored(GlobalMouseEvent::Type::leftMouseUp)) {
        return;
    }
    const std::optional<PointerState> pointer = queryPointer(device);
    m_buttonDown = true;
    m_pressDevice = device;
    m_pressTopLevel = pointer ? pointer->child : 0;
    m_pressWindow = 0;
    m_pressResolved = false;
    m_ownDrag = false;
    m_lastPosition = pointer ? pointer->rootPosition : QPointF();
    m_lastModifiers = pointer ? pointer->modifiers : EventModifierFlags();
    if (isMonitored(GlobalMouseEvent::Type::leftMouseDragged)) {
        selectRootEvents(true);
        XFlush(m_x->display);
    }
}

void X11DragMonitor::buttonReleased()
{
    if (!m_buttonDown) {
        return;
    }
    m_buttonDown = false;
    selectRootEvents(false);
    XFlush(m_x->display);
    if (!isMonitored(GlobalMouseEvent::Type::leftMouseUp)) {
        return;
    }
    resolvePressWindow();
    if (m_ownDrag) {
        return;
    }
    deliver({GlobalMouseEvent::Type::leftMouseUp, toPoints(m_lastPosition), m_pressWindow, m_lastModifiers});
}

void X11DragMonitor::deliverDrag()
{
    if (!m_buttonDown || m_ownDrag || !isMonitored(GlobalMouseEvent::Type::leftMouseDragged)) {
        return;
    }
    // The button may be up already when we read a late motion; its release is still queued behind it,
    // so the motion still belongs to the drag.
    const std::optional<PointerState> pointer = queryPointer(m_pressDevice);
    if (!pointer) {
        return;
    }
    resolvePressWindow();
    if (m_ownDrag) {
        return;
    }
    // Motion below a pixel, or against a screen edge, moves nothing; an unchanged x would read as a
    // change of direction.
    if (pointer->rootPosition == m_lastPosition && pointer->modifiers == m_lastModifiers) {
        return;
    }
    m_lastPosition = pointer->rootPosition;
    m_lastModifiers = pointer->modifiers;
    deliver(
        {GlobalMouseEvent::Type::leftMouseDragged, toPoints(m_lastPosition), m_pressWindow, m_lastModifiers});
}

void X11DragMonitor::resolvePressWindow()
{
    if (m_pressResolved) {
        return;
    }
    m_pressResolved = true;
    if (m_pressTopLevel == 0) {
        return;
    }
    m_pressWindow = clientWindow(m_pressTopLevel);
    m_ownDrag = processId(m_pressWindow) == static_cast<qint64>(::getpid());
}

std::optional<X11DragMonitor::PointerState> X11DragMonitor::queryPointer(int device) const
{
    Window root = 0;
    Window child = 0;
    double rootX = 0;
    double rootY = 0;
    double windowX = 0;
    double windowY = 0;
    XIButtonState buttons{};
    XIModifierState modifiers{};
    XIGroupState group{};
    const bool ok = XIQueryPointer(m_x->display, device, m_x->root, &root, &child, &rootX, &rootY, &windowX,
                                   &windowY, &buttons, &modifiers, &group);
    PointerState state;
    if (ok) {
        state.rootPosition = QPointF(rootX, rootY);
        state.child = child;
        state.modifiers = modifierFlags(modifiers.effective);
    }
    if (buttons.mask) {
        XFree(buttons.mask);
    }
    if (!ok) {
        return std::nullopt;
    }
    return state;
}

QPointF X11DragMonitor::toPoints(QPointF rootPixels) const
{
    QRectF primary = ScreenCoordinates::primaryScreenGeometry();
    if (primary.isEmpty()) {
        // No GUI application: the whole root window, unscaled.
        const int screen = DefaultScreen(m_x->display);
        primary = QRectF(0, 0, DisplayWidth(m_x->display, screen), DisplayHeight(m_x->display, screen));
        return ScreenCoordinates::toBottomLeft(rootPixels, primary);
    }
    // Qt on X11 scales every screen by the same factor, so dividing maps root pixels to its coordinates.
    return ScreenCoordinates::toBottomLeft(rootPixels / QGuiApplication::primaryScreen()->devicePixelRatio(),
                                           primary);
}

QPointF X11DragMonitor::mouseLocation()
{
    const std::optional<PointerState> pointer = queryPointer(m_x->masterPointer);
    dispatchLaterIfQueued();
    return toPoints(pointer ? pointer->rootPosition : m_lastPosition);
}

std::vector<DragMonitor::WindowEntry> X11DragMonitor::windowList()
{
    std::vector<WindowEntry> entries;
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(m_x->display, m_x->root, &root, &parent, &children, &count)) {
        entries.reserve(count);
        for (unsigned int i = 0; i < count; ++i) {
            const quint64 window = clientWindow(children[i]);
            entries.push_back({window, ownerName(window), isDock(window)});
        }
    }
    if (children) {
        XFree(children);
    }
    dispatchLaterIfQueued();
    return entries;
}

quint64 X11DragMonitor::clientWindow(quint64 topLevel) const
{
    // The application's window is the one with WM_STATE: the top level itself without a window manager,
    // somewhere below the frame with one.
    const Atom wmState = m_x->atoms[Connection::wmState];
    if (hasProperty(topLevel, wmState)) {
        return topLevel;
    }
    std::vector<Window> level{static_cast<Window>(topLevel)};
    int searched = 0;
    for (int depth = 0; depth < maximumFrameDepth && !level.empty(); ++depth) {
        std::vector<Window> next;
        for (const Window window : level) {
            Window root = 0;
            Window parent = 0;
            Window* children = nullptr;
            unsigned int count = 0;
            if (!XQueryTree(m_x->display, window, &root, &parent, &children, &count)) {
                continue;
            }
            for (unsigned int i = 0; i < count && searched < maximumWindowsSearched; ++i, ++searched) {
                if (hasProperty(children[i], wmState)) {
                    const Window found = children[i];
                    XFree(children);
                    return found;
                }
                next.push_back(children[i]);
            }
            if (children) {
                XFree(children);
            }
        }
        level = std::move(next);
    }
    return topLevel;
}

QString X11DragMonitor::ownerName(quint64 window) const
{
    XClassHint hint{};
    if (XGetClassHint(m_x->display, window, &hint)) {
        // ICCCM strings are Latin-1.
        const QString name = hint.res_class ? QString::fromLatin1(hint.res_class) : QString();
        if (hint.res_name) {
            XFree(hint.res_name);
        }
        if (hint.res_class) {
            XFree(hint.res_class);
        }
        if (!name.isEmpty()) {
            return name;
        }
    }
    const std::optional<qint64> pid = processId(window);
    if (!pid) {
        return {};
    }
    QFile comm(QStringLiteral("/proc/%1/comm").arg(*pid));
    if (!comm.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromLocal8Bit(comm.read(256)).trimmed();
}

bool X11DragMonitor::isDock(quint64 window) const
{
    const std::vector<quint64> types =
        propertyValues(window, m_x->atoms[Connection::netWmWindowType], XA_ATOM, 32);
    return std::find(types.begin(), types.end(), m_x->atoms[Connection::netWmWindowTypeDock]) != types.end();
}

std::optional<qint64> X11DragMonitor::processId(quint64 window) const
{
    const std::vector<quint64> values =
        propertyValues(window, m_x->atoms[Connection::netWmPid], XA_CARDINAL, 1);
    if (values.empty() || values.front() == 0 || values.front() > 0x7fffffff) {
        return std::nullopt;
    }
    return static_cast<qint64>(values.front());
}

bool X11DragMonitor::hasProperty(quint64 window, quint64 property) const
{
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(m_x->display, window, property, 0, 0, False, AnyPropertyType, &type,
                                          &format, &count, &remaining, &data);
    if (data) {
        XFree(data);
    }
    return status == Success && type != 0;
}

std::vector<quint64> X11DragMonitor::propertyValues(quint64 window, quint64 property, quint64 type,
                                                    long maximum) const
{
    Atom actualType = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    std::vector<quint64> values;
    if (XGetWindowProperty(m_x->display, window, property, 0, maximum, False, type, &actualType, &format,
                           &count, &remaining, &data) == Success &&
        data && actualType == type && format == 32) {
        // Xlib hands 32-bit items over as longs.
        const auto* items = reinterpret_cast<const unsigned long*>(data);
        values.assign(items, items + count);
    }
    if (data) {
        XFree(data);
    }
    return values;
}

void X11DragMonitor::refreshButtonMap()
{
    std::array<unsigned char, 256> map{};
    const int count = XGetPointerMapping(m_x->display, map.data(), static_cast<int>(map.size()));
    m_buttonMap.assign(map.begin(), map.begin() + std::max(0, count));
}

int X11DragMonitor::logicalButton(int physical) const
{
    // Raw events carry the device's button before the pointer mapping, so a left-handed mapping moves
    // the primary button elsewhere.
    if (physical < 1 || physical > static_cast<int>(m_buttonMap.size())) {
        return physical;
    }
    return m_buttonMap[physical - 1];
}

void X11DragMonitor::dispatchLaterIfQueued()
{
    if (QLength(m_x->display) > 0) {
        QMetaObject::invokeMethod(this, &X11DragMonitor::dispatchPendingEvents, Qt::QueuedConnection);
    }
}

} // namespace Vantrope
