// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// recognizer_event_ns: the recognizer's cost for one drag event, delivered through the monitor, from a
// window whose owner is already known and a shake that keeps turning but never completes.

#include "Domains/Activation/DragMonitor.h"
#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/TransientProperties.h"

#include <algorithm>
#include <cstdio>
#include <QCoreApplication>
#include <QElapsedTimer>

using namespace Vantrope;

namespace {

class BenchMonitor final : public DragMonitor {
public:
    bool isAvailable() const override { return true; }
    QString unavailableReason() const override { return {}; }
    QPointF mouseLocation() override { return {}; }
    qint64 dragPasteboardChangeCount() override { return 0; }
    std::vector<WindowEntry> windowList() override { return {{1, QStringLiteral("Files"), false}}; }

    void drag(QPointF point) { deliver({GlobalMouseEvent::Type::leftMouseDragged, point, 1, {}}); }
};

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    BenchMonitor monitor;
    TransientProperties properties;
    DragRecognizer recognizer(monitor, Clock::system(), DispatchQueue::main(), &properties);
    recognizer.setIgnoredApplications({QStringLiteral("Terminal"), QStringLiteral("Photos")});

    constexpr int events = 2'000'000;
    double best = 1e18;
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < events; ++i) {
            // Runs of eight 3-point steps: every turn counts, and the one-second window keeps the count
            // from ever completing.
            const int phase = i % 16;
            monitor.drag(QPointF(500 + 3 * (phase < 8 ? phase : 16 - phase), 400));
        }
        best = std::min(best, static_cast<double>(timer.nsecsElapsed()) / events);
    }
    if (recognizer.state().kind != DragRecognizer::State::Kind::none) {
        std::fprintf(stderr, "the benchmark shake began a gesture\n");
        return 1;
    }
    std::printf("recognizer_event_ns %.1f ns\n", best);
    return 0;
}
