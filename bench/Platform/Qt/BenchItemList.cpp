// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// item_list_open_1000_ms: from the request to open the item list of a shelf of 1,000 files (one in ten a
// picture) until the list's window is exposed and drawn (median of 5; the list is closed in between).
// item_list_1000_rss_mb: what the first open list adds to the resident memory once its visible pictures
// are decoded.
// item_list_open_10000_ms: the same for 10,000 files; item_list_scroll_page_10000_ms: scrolling that list
// from top to bottom a page at a time, the mean time to draw a page of rows not seen before.
// On a virtual display of its own, with the program's own libraries.

#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/DragSessionOutlineListView.h"
#include "Platform/Qt/DragSessionOutlineModel.h"
#include "Platform/Qt/DragSessionOutlinePanel.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtDragSessionView.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "QtShelves.h"
#include "support/BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWindow>
#include <vector>

using namespace Vantrope;
using Vantrope::Bench::waitFor;
using Shelves = Vantrope::Bench::QtShelves;

namespace {

constexpr int fileCount = 1000;
constexpr int largeFileCount = 10000;
constexpr int opens = 5;

// Opens the list and answers the milliseconds until it is on screen and drawn, or -1.
double openAndDraw(DragSessionCoordinator& shelf)
{
    auto& view = dynamic_cast<QtDragSessionView&>(shelf.view());
    QElapsedTimer timer;
    timer.start();
    if (!shelf.openOutline()) {
        return -1;
    }
    DragSessionOutlinePanel* panel = view.outlinePanel();
    if (!panel || !waitFor([panel] { return panel->windowHandle() && panel->windowHandle()->isExposed(); })) {
        return -1;
    }
    panel->listView().viewport()->repaint();
    return double(timer.nsecsElapsed()) / 1e6;
}

void closeList(DragSessionCoordinator& shelf)
{
    auto& view = dynamic_cast<QtDragSessionView&>(shelf.view());
    if (DragSessionOutlinePanel* panel = view.outlinePanel()) {
        panel->hide();
    }
    waitFor([&] { return !shelf.isOutlineOpen() && !view.outlinePanel(); });
}

struct Figures {
    double openMs = -1;
    double addedMb = -1;
    // Scrolling the whole list from top to bottom a page at a time: the mean time to bring a page
    // of rows never seen before on screen.
    double pageMs = -1;
};

// A shelf of `count` files, one in ten a picture; its list opened five times.
std::optional<Figures> measure(int count)
{
    Shelves shelves;
    QImage picture(640, 480, QImage::Format_RGB32);
    picture.fill(QColor(40, 120, 200));
    DraggableList items;
    for (int index = 0; index < count; ++index) {
        const bool isPicture = index % 10 == 0;
        const QString path =
            shelves.folder.filePath(QStringLiteral("item %1.%2")
                                        .arg(index)
                                        .arg(isPicture ? QStringLiteral("png") : QStringLiteral("txt")));
        if (isPicture) {
            picture.save(path);
        } else {
            QFile file(path);
            if (!file.open(QIODevice::WriteOnly) || file.write("some text\n") < 0) {
                std::fprintf(stderr, "could not write %s\n", qPrintable(path));
                return std::nullopt;
            }
        }
        items.append(DraggableFile::make(QUrl::fromLocalFile(path)));
    }
    auto shelf = shelves.open(QPointF(600, 700));
    shelf->appendItems(items);
    if (!waitFor([&] { return shelf->itemsController().processingItems().isEmpty(); }, 120000)) {
        std::fprintf(stderr, "the items were not processed\n");
        return std::nullopt;
    }
    waitFor([] { return false; }, 500);

    Figures figures;
    const double before = Bench::residentMegabytes();
    std::vector<double> times;
    const double first = openAndDraw(*shelf);
    auto& view = dynamic_cast<QtDragSessionView&>(shelf->view());
    if (first < 0 || !view.outlinePanel()) {
        std::fprintf(stderr, "the list did not open\n");
        return std::nullopt;
    }
    DragSessionOutlineModel& model = view.outlinePanel()->model();
    waitFor([&model] { return model.pendingThumbnails() == 0; });
    waitFor([] { return false; }, 200);
    figures.addedMb = Bench::residentMegabytes() - before;
    times.push_back(first);

    QListView& list = view.outlinePanel()->listView();
    QElapsedTimer scrolling;
    scrolling.start();
    QScrollBar* bar = list.verticalScrollBar();
    int pages = 0;
    for (int value = bar->minimum(); value <= bar->maximum(); value += std::max(1, bar->pageStep())) {
        bar->setValue(value);
        list.viewport()->repaint();
        ++pages;
    }
    figures.pageMs = double(scrolling.nsecsElapsed()) / 1e6 / std::max(1, pages);
    closeList(*shelf);
    for (int run = 1; run < opens; ++run) {
        const double time = openAndDraw(*shelf);
        if (time < 0) {
            std::fprintf(stderr, "the list did not open\n");
            return std::nullopt;
        }
        times.push_back(time);
        closeList(*shelf);
    }
    figures.openMs = Bench::median(times);
    shelf->stop(false);
    waitFor([&] { return shelves.controller.coordinators().isEmpty(); });
    return figures;
}

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> code =
            Bench::runOnOwnDisplay(argv, {"Xvfb", "openbox", "dbus-run-session"})) {
        return *code;
    }
    QApplication app(argc, argv);
    const std::optional<Figures> thousand = measure(fileCount);
    if (!thousand) {
        return 1;
    }
    std::printf("item_list_open_1000_ms %.1f ms\n", thousand->openMs);
    std::printf("item_list_1000_rss_mb %.1f MB\n", thousand->addedMb);
    const std::optional<Figures> large = measure(largeFileCount);
    if (!large) {
        return 1;
    }
    std::printf("item_list_open_10000_ms %.1f ms\n", large->openMs);
    std::printf("item_list_scroll_page_10000_ms %.2f ms\n", large->pageMs);
    return 0;
}
