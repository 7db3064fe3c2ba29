// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/DragRecognizerConfiguration.h"
#include "Domains/Activation/TransientProperties.h"
#include "Platform/X11/X11DragMonitor.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/PointerScript.h"
#include "support/RecordingRecognizerDelegate.h"
#include "support/TestSupport.h"

#include <array>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <unistd.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

enum class Gesture { shake, slowShake, modifier, lateContent };

} // namespace

// The X11 monitor on a real X server, driven by real X input (xdotool), and the recognizer on it with a
// real file drag from another process.
class TestX11DragMonitor final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        m_display = XOpenDisplay(nullptr);
        QVERIFY(m_display);
        auto monitor = X11DragMonitor::open(qgetenv("DISPLAY"));
        QVERIFY2(monitor, qPrintable(monitor.error()));
        m_monitor = std::move(*monitor);
        m_screenHeight = QGuiApplication::primaryScreen()->geometry().height();
    }

    void cleanupTestCase()
    {
        m_monitor.reset();
        XCloseDisplay(m_display);
    }

    void init()
    {
        m_events.clear();
        m_token = m_monitor->addGlobalMonitor(
            GlobalMouseEvent::Type::leftMouseDragged | GlobalMouseEvent::Type::leftMouseUp,
            [this](const GlobalMouseEvent& event) { m_events.append(event); });
    }

    void cleanup()
    {
        m_monitor->removeMonitor(m_token);
        for (const Window window : std::as_const(m_windows)) {
            XDestroyWindow(m_display, window);
        }
        m_windows.clear();
        XSync(m_display, False);
    }

    void reportsLeftButtonDrags_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("key");
        QTest::addColumn<EventModifierFlags>("modifiers");
        // Buttons 1 and 3 swapped in the pointer mapping, as for a left hand.
        QTest::addColumn<bool>("leftHanded");
        QTest::addColumn<bool>("reported");

        const EventModifierFlags none;
        QTest::newRow("left") << QStringLiteral("1") << QString() << none << false << true;
        QTest::newRow("left with shift") << QStringLiteral("1") << QStringLiteral("shift")
                                         << EventModifierFlags(EventModifierFlag::shift) << false << true;
        QTest::newRow("left with control") << QStringLiteral("1") << QStringLiteral("ctrl")
                                           << EventModifierFlags(EventModifierFlag::control) << false << true;
        QTest::newRow("left with super") << QStringLiteral("1") << QStringLiteral("super")
                                         << EventModifierFlags(EventModifierFlag::command) << false << true;
        QTest::newRow("right") << QStringLiteral("3") << QString() << none << false << false;
        QTest::newRow("no button") << QString() << QString() << none << false << false;
        QTest::newRow("left-handed, device button 3")
            << QStringLiteral("3") << QString() << none << true << true;
        QTest::newRow("left-handed, device button 1")
            << QStringLiteral("1") << QString() << none << true << false;
    }

    void reportsLeftButtonDrags()
    {
        QFETCH(QString, button);
        QFETCH(QString, key);
        QFETCH(EventModifierFlags, modifiers);
        QFETCH(bool, leftHanded);
        QFETCH(bool, reported);

        if (leftHanded) {
            swapPrimaryButton();
        }
        const auto restoreMapping = qScopeGuard([&] {
            if (leftHanded) {
                swapPrimaryButton();
            }
        });
        const Window window = createWindow("Probe", false, false);
        QVERIFY(waitUntilManaged(window));
        const qint64 changeCount = m_monitor->dragPasteboardChangeCount();

        QStringList script;
        if (!key.isEmpty()) {
            script << QStringLiteral("keydown") << key;
        }
        script << Test::PointerScript().moveTo(QPoint(400, 400)).arguments();
        if (!button.isEmpty()) {
            script << QStringLiteral("mousedown") << button;
        }
        script << Test::PointerScript()
                      .pause(50ms)
                      .move(30, 10)
                      .pause(50ms)
                      .move(30, 10)
                      .pause(50ms)
                      .arguments();
        // The monitor reads the modifiers when it handles an event, so the keys stay down until a loaded
        // machine has surely handled the last motion and the release, as a person's hand does.
        if (!button.isEmpty()) {
            script << Test::PointerScript().pause(300ms).arguments() << QStringLiteral("mouseup") << button;
        }
        if (!key.isEmpty()) {
            script << Test::PointerScript().pause(300ms).arguments() << QStringLiteral("keyup") << key;
        }
        QVERIFY(Test::runXdotool(script));
        if (!reported) {
            // A primary click afterwards marks the end: everything before it has been read by then.
            QVERIFY(Test::runXdotool(
                {QStringLiteral("click"), leftHanded ? QStringLiteral("3") : QStringLiteral("1")}));
        }
        QTRY_VERIFY(!m_events.isEmpty() && m_events.last().type == GlobalMouseEvent::Type::leftMouseUp);

        QList<GlobalMouseEvent> drags;
        for (const GlobalMouseEvent& event : std::as_const(m_events)) {
            if (event.type == GlobalMouseEvent::Type::leftMouseDragged) {
                drags.append(event);
            }
        }
        QCOMPARE(m_events.size() - drags.size(), 1);
        QCOMPARE(m_monitor->dragPasteboardChangeCount(), changeCount);
        if (!reported) {
            QVERIFY(drags.isEmpty());
            return;
        }
        QVERIFY(!drags.isEmpty());
        const QPointF last(460, m_screenHeight - 420);
        QCOMPARE(drags.last().locationInWindow, last);
        QCOMPARE(m_events.last().locationInWindow, last);
        for (const GlobalMouseEvent& event : std::as_const(m_events)) {
            QCOMPARE(event.windowNumber, quint64(window));
            QCOMPARE(event.modifierFlags, modifiers);
        }
    }

    void listsWindows_data()
    {
        QTest::addColumn<QByteArray>("wmClass");
        QTest::addColumn<bool>("withProcessId");
        QTest::addColumn<bool>("dock");
        QTest::addColumn<QString>("ownerName");

        QFile comm(QStringLiteral("/proc/self/comm"));
        QVERIFY(comm.open(QIODevice::ReadOnly));
        const QString processName = QString::fromLocal8Bit(comm.readAll()).trimmed();

        QTest::newRow("WM_CLASS") << QByteArray("Probe") << true << false << QStringLiteral("Probe");
        QTest::newRow("process name without WM_CLASS") << QByteArray() << true << false << processName;
        QTest::newRow("nothing to name it") << QByteArray() << false << false << QString();
        QTest::newRow("dock") << QByteArray("Panel") << false << true << QStringLiteral("Panel");
    }

    void listsWindows()
    {
        QFETCH(QByteArray, wmClass);
        QFETCH(bool, withProcessId);
        QFETCH(bool, dock);
        QFETCH(QString, ownerName);

        const Window window = createWindow(wmClass, withProcessId, dock);
        QVERIFY(waitUntilManaged(window));
        const std::vector<DragMonitor::WindowEntry> entries = m_monitor->windowList();
        const auto entry = std::find_if(entries.begin(), entries.end(), [window](const auto& candidate) {
            return candidate.windowNumber == window;
        });
        QVERIFY(entry != entries.end());
        QCOMPARE(entry->ownerName, ownerName);
        QCOMPARE(entry->isDock, dock);
    }

    void gestures_data()
    {
        QTest::addColumn<Gesture>("gesture");
        QTest::addColumn<bool>("ignored");
        QTest::addColumn<bool>("began");

        QTest::newRow("shake") << Gesture::shake << false << true;
        QTest::newRow("slow shake") << Gesture::slowShake << false << false;
        QTest::newRow("trigger modifier") << Gesture::modifier << false << true;
        QTest::newRow("shake in an ignored program") << Gesture::shake << true << false;
        QTest::newRow("ignored program, content after the shake") << Gesture::lateContent << true << true;
    }

    void gestures()
    {
        QFETCH(Gesture, gesture);
        QFETCH(bool, ignored);
        QFETCH(bool, began);

        Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
        preferences.setValue(PreferenceKeys::shelfTriggerModifierKeyEnabled, gesture == Gesture::modifier);
        preferences.setValue(PreferenceKeys::shelfTriggerModifierKey, QStringLiteral("shift"));
        if (ignored) {
            preferences.setValue(PreferenceKeys::ignoredApplication, {QStringLiteral("ShelfDragSource.app")});
        }
        TransientProperties properties;
        DragRecognizer recognizer(*m_monitor, Clock::system(), DispatchQueue::main(), &properties);
        DragRecognizerConfiguration configuration(preferences, recognizer);
        Test::RecordingRecognizerDelegate delegate;
        recognizer.setDelegate(&delegate);
        // Runs after the recognizer's own handler, so it sees what the release found.
        qsizetype endedAtRelease = -1;
        qsizetype beganAtRelease = -1;
        const auto releaseToken =
            m_monitor->addGlobalMonitor(GlobalMouseEvent::Type::leftMouseUp, [&](const GlobalMouseEvent&) {
                endedAtRelease = delegate.ended.size();
                beganAtRelease = delegate.began.size();
            });
        const auto removeReleaseMonitor = qScopeGuard([&] { m_monitor->removeMonitor(releaseToken); });

        Test::HelperProgram source;
        const QString dragged = QDir::home().filePath(QStringLiteral("dragged.txt"));
        QVERIFY(Test::writeFile(dragged, "dragged\n"));
        QStringList arguments{QStringLiteral("--kind"), QStringLiteral("files"), QStringLiteral("--file"),
                              dragged};
        if (gesture == Gesture::lateContent) {
            arguments << QStringLiteral("--delay") << QStringLiteral("900");
        }
        const QPoint from = source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY), arguments);
        QVERIFY(!from.isNull());
        const int x = from.x();
        const int y = from.y();
        const qint64 changeCount = m_monitor->dragPasteboardChangeCount();

        Test::PointerScript script;
        if (gesture == Gesture::modifier) {
            script.keyDown(QStringLiteral("shift"));
        }
        script.startDrag(QPoint(x, y));
        QPointF expected(x + 85, m_screenHeight - y);
        switch (gesture) {
        case Gesture::shake:
            // Long enough for the drag's content to be seen and the one-second window to start over.
            script.pause(1200ms).shake();
            break;
        case Gesture::slowShake:
            script.pause(1200ms).shake(250ms);
            break;
        case Gesture::modifier:
            // The moves so far carried no content yet; the next one begins the gesture.
            script.pause(600ms).move(10, 0);
            expected = QPointF(x + 50, m_screenHeight - y);
            break;
        case Gesture::lateContent:
            // The shake is over before the source starts its drag, 0.9 s after the press. The gesture
            // begins where the pointer is then; a warp moves it without a drag event.
            script.pause(50ms).shake().moveTo(QPoint(x + 100, y + 30)).pause(800ms);
            expected = QPointF(x + 100, m_screenHeight - y - 30);
            break;
        }
        script.pause(300ms).release();
        if (gesture == Gesture::modifier) {
            script.keyUp(QStringLiteral("shift"));
        }
        QVERIFY(Test::runXdotool(script.arguments()));

        QVERIFY(source.waitFor("drag finished", 10000));
        QVERIFY(source.output().contains("drag started"));
        QTRY_VERIFY(endedAtRelease >= 0);
        QVERIFY(m_monitor->dragPasteboardChangeCount() > changeCount);
        QCOMPARE(beganAtRelease, began ? 1 : 0);
        QCOMPARE(endedAtRelease, 0);
        if (began) {
            QCOMPARE(delegate.began.first(), std::optional(expected));
            QTRY_COMPARE(delegate.ended, QList<SessionCloseFilter>{SessionCloseFilter::empty});
            QVERIFY(recognizer.state().kind == DragRecognizer::State::Kind::none);
        } else {
            // Whatever the release would end comes 0.1 s later; give it time to show up.
            QTest::qWait(300);
            QVERIFY(delegate.ended.isEmpty());
        }
        QCOMPARE(delegate.began.size(), began ? 1 : 0);
    }

private:
    Window createWindow(const QByteArray& wmClass, bool withProcessId, bool dock)
    {
        const int screen = DefaultScreen(m_display);
        const Window window =
            XCreateSimpleWindow(m_display, RootWindow(m_display, screen), 300, 300, 400, 300, 0,
                                BlackPixel(m_display, screen), WhitePixel(m_display, screen));
        // Without a user-given position the window manager would place the window where it likes.
        XSizeHints hints{};
        hints.flags = USPosition | USSize;
        XSetWMNormalHints(m_display, window, &hints);
        if (!wmClass.isEmpty()) {
            QByteArray name = wmClass.toLower();
            QByteArray className = wmClass;
            XClassHint hint{name.data(), className.data()};
            XSetClassHint(m_display, window, &hint);
        }
        if (withProcessId) {
            const long pid = ::getpid();
            XChangeProperty(m_display, window, XInternAtom(m_display, "_NET_WM_PID", False), XA_CARDINAL, 32,
                            PropModeReplace, reinterpret_cast<const unsigned char*>(&pid), 1);
        }
        if (dock) {
            const long type = static_cast<long>(XInternAtom(m_display, "_NET_WM_WINDOW_TYPE_DOCK", False));
            XChangeProperty(m_display, window, XInternAtom(m_display, "_NET_WM_WINDOW_TYPE", False), XA_ATOM,
                            32, PropModeReplace, reinterpret_cast<const unsigned char*>(&type), 1);
        }
        XMapRaised(m_display, window);
        XSync(m_display, False);
        m_windows.append(window);
        return window;
    }

    void swapPrimaryButton()
    {
        std::array<unsigned char, 256> map{};
        const int count = XGetPointerMapping(m_display, map.data(), static_cast<int>(map.size()));
        std::swap(map[0], map[2]);
        XSetPointerMapping(m_display, map.data(), count);
        XSync(m_display, False);
    }

    // The window manager marks the windows it manages with WM_STATE.
    bool waitUntilManaged(Window window)
    {
        const Atom wmState = XInternAtom(m_display, "WM_STATE", False);
        return QTest::qWaitFor([&] {
            Atom type = 0;
            int format = 0;
            unsigned long count = 0;
            unsigned long remaining = 0;
            unsigned char* data = nullptr;
            XGetWindowProperty(m_display, window, wmState, 0, 0, False, AnyPropertyType, &type, &format,
                               &count, &remaining, &data);
            if (data) {
                XFree(data);
            }
            return type != 0;
        });
    }

    Display* m_display = nullptr;
    std::unique_ptr<X11DragMonitor> m_monitor;
    DragMonitor::MonitorToken m_token = 0;
    QList<GlobalMouseEvent> m_events;
    QList<Window> m_windows;
    int m_screenHeight = 0;
};

QTEST_MAIN(TestX11DragMonitor)
#include "TestX11DragMonitor.moc"
