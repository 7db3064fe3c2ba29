// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// drop_1000_to_view_ms: from the drop of 1,000 files on a shelf until every item is on the pile and the
// pile is drawn (median of 5). Drops of 30 items or more are read after a fixed pause of half a second,
// which this figure includes; drop_1000_work_ms is the same without the pause.
// shelf_1000_rss_mb: what a shelf holding 1,000 files adds to the resident memory, once every item has a
// bookmark and a file watch.
// shake_to_shelf_ms: from the drag event that completes a shake (real X input from xdotool, a real file
// drag from another process) until the new shelf's window is on screen (median of 3).
// All of it on a virtual display of its own, with the program's own libraries.

#include "Domains/Activation/DragRecognizer.h"
#include "Domains/Activation/DragRecognizerConfiguration.h"
#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionStackView.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtDragSessionView.h"
#include "Platform/Qt/QtDragSessionWindow.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Platform/X11/X11DragMonitor.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "QtShelves.h"
#include "support/BenchSupport.h"
#include "support/PointerScript.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <unistd.h>
#include <vector>

using namespace Vantrope;
using Vantrope::Bench::waitFor;
using Shelves = Vantrope::Bench::QtShelves;
using namespace std::chrono_literals;

namespace {

constexpr int fileCount = 1000;
constexpr int drops = 5;
constexpr int shakes = 3;

// Drops the files on the shelf as a drag from another program would, through the shelf's own drop view.
// Answers the milliseconds until the pile holds them all and has been drawn.
double dropAndLayOut(DragSessionCoordinator& shelf, QMimeData& data)
{
    auto& view = dynamic_cast<QtDragSessionView&>(shelf.view());
    DragSessionInboundDropView& target = view.dropView();
    DragSessionStackView& stack = view.stackView();
    const QPoint at = target.rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &enter);
    QElapsedTimer timer;
    timer.start();
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &drop);
    if (!waitFor([&] { return stack.draggables().size() == fileCount; })) {
        return -1;
    }
    stack.repaint();
    return double(timer.nsecsElapsed()) / 1e6;
}

// Times the path from the recognizer's decision, made within the handling of the completing drag event,
// to the shelf's window being exposed.
class TimingDelegate final : public QObject, public DragRecognizerDelegate {
public:
    explicit TimingDelegate(SessionController& controller)
        : m_controller(controller)
    {}

    void dragRecognizerDidBegin(std::optional<QPointF> location) override
    {
        QElapsedTimer timer;
        timer.start();
        const qsizetype before = m_controller.coordinators().size();
        m_controller.dragRecognizerDidBegin(location);
        const auto shelves = m_controller.coordinators();
        if (shelves.size() == before) {
            return;
        }
        m_started = timer;
        m_window = shelfWindow(*shelves.last());
        m_window->installEventFilter(this);
        // Shown already (a window manager may map it at once); otherwise the expose event says so.
        if (m_window->isExposed()) {
            record();
        }
    }

    void dragRecognizerDidEnd(SessionCloseFilter filter) override
    {
        m_controller.dragRecognizerDidEnd(filter);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_window && event->type() == QEvent::Expose && m_window->isExposed()) {
            record();
        }
        return false;
    }

    std::vector<double> times;

private:
    static QWindow* shelfWindow(const DragSessionCoordinator& shelf)
    {
        return dynamic_cast<QtDragSessionWindow&>(shelf.window()).widget().windowHandle();
    }

    void record()
    {
        if (m_window) {
            m_window->removeEventFilter(this);
            m_window = nullptr;
            times.push_back(double(m_started.nsecsElapsed()) / 1e6);
        }
    }

    SessionController& m_controller;
    QElapsedTimer m_started;
    QWindow* m_window = nullptr;
};

double measureShake(Shelves& shelves, const QString& file)
{
    auto monitor = X11DragMonitor::open(qgetenv("DISPLAY"));
    if (!monitor) {
        std::fprintf(stderr, "no X11 monitor: %s\n", qPrintable(monitor.error()));
        return -1;
    }
    DragRecognizer recognizer(**monitor, Clock::system());
    DragRecognizerConfiguration configuration(shelves.preferences, recognizer);
    TimingDelegate delegate(shelves.controller);
    recognizer.setDelegate(&delegate);

    QProcess source;
    source.start(QStringLiteral(SHELF_DRAG_SOURCE_BINARY),
                 {QStringLiteral("--kind"), QStringLiteral("files"), QStringLiteral("--file"), file});
    QByteArray output;
    if (!source.waitForStarted() ||
        !waitFor([&] { return output.append(source.readAllStandardOutput()).contains("ready "); })) {
        std::fprintf(stderr, "the drag source did not start\n");
        return -1;
    }
    const QList<QByteArray> ready = output.mid(output.indexOf("ready ")).split('\n').first().split(' ');
    const QPoint at(ready.value(1).toInt(), ready.value(2).toInt());
    for (int i = 0; i < shakes; ++i) {
        QProcess xdotool;
        // Press on the source, start its drag, wait for its content to show, then one shake.
        xdotool.start(
            QStringLiteral("xdotool"),
            Test::PointerScript().startDrag(at).pause(1200ms).shake().pause(400ms).release().arguments());
        waitFor([&] { return xdotool.state() == QProcess::NotRunning; });
        // The release closes the empty shelf; wait for it before the next shake.
        waitFor([&] { return shelves.controller.coordinators().isEmpty(); });
    }
    recognizer.setDelegate(nullptr);
    source.kill();
    source.waitForFinished();
    if (delegate.times.size() < size_t(shakes)) {
        std::fprintf(stderr, "only %zu of %d shakes opened a shelf\n", delegate.times.size(), shakes);
        return -1;
    }
    return Bench::median(delegate.times);
}

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> exitCode =
            Bench::runOnOwnDisplay(argv, {"Xvfb", "xdotool", "openbox", "dbus-run-session"})) {
        return *exitCode;
    }

    QTemporaryDir home;
    for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        ::setenv(variable, QFile::encodeName(home.filePath(QString::fromLatin1(variable))).constData(), 1);
    }
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);

    QTemporaryDir files;
    QList<QUrl> urls;
    for (int i = 0; i < fileCount; ++i) {
        const QString path = files.filePath(QStringLiteral("file-%1.txt").arg(i, 4, 10, QLatin1Char('0')));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write("some bytes\n") <= 0) {
            std::fprintf(stderr, "could not write %s\n", qPrintable(path));
            return 1;
        }
        urls.append(QUrl::fromLocalFile(path));
    }
    QMimeData data;
    data.setUrls(urls);

    Shelves shelves;
    // The first shelf of a run pays for fonts, icons and caches once; a one-item shelf takes that cost out
    // of the figures.
    auto warmUp = shelves.open();
    warmUp->appendItems(DraggableList{DraggableFile::make(urls.first())});
    dynamic_cast<QtDragSessionView&>(warmUp->view()).stackView().repaint();
    warmUp.reset();
    shelves.closeAll();

    const double before = Bench::residentMegabytes();
    auto shelf = shelves.open();
    if (dropAndLayOut(*shelf, data) < 0 ||
        !waitFor([&] { return shelf->itemsController().processingItems().isEmpty(); })) {
        std::fprintf(stderr, "the items were not processed\n");
        return 1;
    }
    const double held = Bench::residentMegabytes() - before;
    shelf.reset();
    shelves.closeAll();

    std::vector<double> times;
    for (int i = 0; i < drops; ++i) {
        auto dropped = shelves.open();
        const double elapsed = dropAndLayOut(*dropped, data);
        if (elapsed < 0) {
            std::fprintf(stderr, "the dropped files did not all reach the pile\n");
            return 1;
        }
        times.push_back(elapsed);
        dropped.reset();
        shelves.closeAll();
    }
    const double dropTime = Bench::median(times);

    const double shake = measureShake(shelves, urls.first().toLocalFile());
    if (shake < 0) {
        return 1;
    }

    std::printf("drop_1000_to_view_ms %.1f ms\n", dropTime);
    std::printf("drop_1000_work_ms %.1f ms\n",
                dropTime - double(DragSessionDropIntake::efficiencyModeReadDelay.count()));
    std::printf("shelf_1000_rss_mb %.1f MB\n", held);
    std::printf("shake_to_shelf_ms %.1f ms\n", shake);
    return 0;
}
