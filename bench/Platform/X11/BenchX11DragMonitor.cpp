// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// x11_monitor_event_us: wall time the X11 monitor spends on one motion event during a left-button drag,
// pointer query included, with real input from xdotool on a virtual display of its own.
// x11_monitor_idle_cpu_ms_per_min: the process's CPU time while no button is down and the pointer moves
// about, with a recognizer attached after a finished drag; measured over 5 s and scaled to a minute.

#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/TransientProperties.h"
#include "Platform/X11/X11DragMonitor.h"
#include "support/BenchSupport.h"

#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <sys/resource.h>
#include <unistd.h>

using namespace Vantrope;

namespace {

constexpr int motionEvents = 400;
constexpr int idleSeconds = 5;

double cpuMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

QStringList dragScript()
{
    QStringList script{QStringLiteral("mousemove"), QStringLiteral("960"), QStringLiteral("540"),
                       QStringLiteral("mousedown"), QStringLiteral("1"),   QStringLiteral("sleep"),
                       QStringLiteral("0.2")};
    for (int i = 0; i < motionEvents; ++i) {
        script << QStringLiteral("mousemove_relative") << QStringLiteral("--")
               << QString::number(i % 2 == 0 ? 3 : -3) << QStringLiteral("0") << QStringLiteral("sleep")
               << QStringLiteral("0.003");
    }
    script << QStringLiteral("mouseup") << QStringLiteral("1");
    return script;
}

// Times only the monitor's own work: the wait for the socket happens outside the clock.
double measureMotion(X11DragMonitor& monitor)
{
    int delivered = 0;
    const auto token = monitor.addGlobalMonitor(GlobalMouseEvent::Type::leftMouseDragged,
                                                [&delivered](const GlobalMouseEvent&) { ++delivered; });
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"), dragScript());
    xdotool.waitForStarted();
    qint64 elapsed = 0;
    int timed = 0;
    while (xdotool.state() != QProcess::NotRunning) {
        pollfd descriptor{monitor.connectionNumber(), POLLIN, 0};
        ::poll(&descriptor, 1, 50);
        const int before = delivered;
        QElapsedTimer timer;
        timer.start();
        monitor.dispatchPendingEvents();
        const qint64 nanoseconds = timer.nsecsElapsed();
        if (delivered > before) {
            elapsed += nanoseconds;
            timed += delivered - before;
        }
        xdotool.waitForFinished(0);
    }
    monitor.dispatchPendingEvents();
    monitor.removeMonitor(token);
    if (timed < motionEvents / 2) {
        std::fprintf(stderr, "only %d of %d motion events arrived\n", timed, motionEvents);
        return -1;
    }
    return static_cast<double>(elapsed) / timed / 1e3;
}

double measureIdle(X11DragMonitor& monitor)
{
    TransientProperties properties;
    DragRecognizer recognizer(monitor, Clock::system(), DispatchQueue::main(), &properties);
    QProcess xdotool;
    // A finished drag first, so the recognizer has started and stopped its polling.
    xdotool.start(QStringLiteral("xdotool"),
                  {QStringLiteral("mousemove"), QStringLiteral("100"), QStringLiteral("100"),
                   QStringLiteral("mousedown"), QStringLiteral("1"), QStringLiteral("mousemove_relative"),
                   QStringLiteral("40"), QStringLiteral("0"), QStringLiteral("mouseup"),
                   QStringLiteral("1")});
    xdotool.waitForFinished();
    QEventLoop settle;
    QTimer::singleShot(500, &settle, &QEventLoop::quit);
    settle.exec();
    if (recognizer.pasteboardWatchDog().polling()) {
        std::fprintf(stderr, "the watchdog still polls after the drag\n");
        return -1;
    }

    // Hover motion outlasting the window, started before it so that starting a process is not counted.
    QStringList hover;
    for (int i = 0; i < idleSeconds * 60; ++i) {
        hover << QStringLiteral("mousemove_relative") << QStringLiteral("--")
              << QString::number(i % 2 == 0 ? 5 : -5) << QStringLiteral("0") << QStringLiteral("sleep")
              << QStringLiteral("0.02");
    }
    xdotool.start(QStringLiteral("xdotool"), hover);
    xdotool.waitForStarted();
    const double start = cpuMilliseconds();
    QEventLoop idle;
    QTimer::singleShot(idleSeconds * 1000, &idle, &QEventLoop::quit);
    idle.exec();
    const double used = cpuMilliseconds() - start;
    xdotool.kill();
    xdotool.waitForFinished();
    return used * 60.0 / idleSeconds;
}

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> exitCode =
            Bench::runOnOwnDisplay(argv, {"Xvfb", "xdotool", "openbox", "dbus-run-session"})) {
        return *exitCode;
    }

    QCoreApplication app(argc, argv);
    auto monitor = X11DragMonitor::open(qgetenv("DISPLAY"));
    if (!monitor) {
        std::fprintf(stderr, "no X11 monitor: %s\n", qPrintable(monitor.error()));
        return 1;
    }
    const double perEvent = measureMotion(**monitor);
    const double idle = measureIdle(**monitor);
    if (perEvent < 0 || idle < 0) {
        return 1;
    }
    std::printf("x11_monitor_event_us %.1f us\n", perEvent);
    std::printf("x11_monitor_idle_cpu_ms_per_min %.2f ms\n", idle);
    return 0;
}
