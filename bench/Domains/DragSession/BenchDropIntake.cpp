// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Figures for a drop of 10,000 files: building the items from the pasteboard and validating them, then
// adding them to a shelf until every one is bookmarked and watched.
#include "Domains/DragSession/DraggablePasteboardReader.h"
#include "Domains/DragSession/DragSessionDropValidator.h"
#include "Domains/DragSession/DragSessionItemsController.h"
#include "Models/Pasteboard/Pasteboard.h"
#include "Models/Pasteboard/PasteboardTypes.h"
#include "Platform/Linux/InotifyFileWatcher.h"

#include <cstdio>
#include <ctime>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMimeData>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <sys/resource.h>

using namespace Vantrope;

namespace {

double threadCpuMs()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1000.0 + static_cast<double>(time.tv_nsec) / 1e6;
}

} // namespace

int main(int argc, char* argv[])
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication app(argc, argv);
    constexpr int count = 10000;

    QTemporaryDir dir;
    QByteArray uriList;
    for (int i = 0; i < count; ++i) {
        const QString path = dir.filePath(QStringLiteral("file-%1.txt").arg(i));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write("contents") != 8) {
            std::fprintf(stderr, "could not write %s\n", qPrintable(path));
            return 1;
        }
        uriList += QUrl::fromLocalFile(path).toEncoded() + "\r\n";
    }
    QMimeData mime;
    mime.setData(PasteboardTypes::uriList, uriList);

    QElapsedTimer timer;
    timer.start();
    const Pasteboard pasteboard = Pasteboard::fromMimeData(mime);
    const DraggableList draggables = DraggablePasteboardReader::readFiles(pasteboard);
    const bool accepted = !DragSessionDropValidator::validateDrop({}, draggables).has_value();
    const double buildMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    if (!accepted || draggables.size() != count) {
        std::fprintf(stderr, "the drop was not taken whole (%lld items)\n",
                     static_cast<long long>(draggables.size()));
        return 1;
    }

    DragSessionItemsController controller(Clock::system(), InotifyFileWatcher::shared());
    const double cpuBefore = threadCpuMs();
    timer.restart();
    controller.addItems(draggables);
    while (!controller.processingItems().isEmpty()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    const double processedMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const double mainThreadMs = threadCpuMs() - cpuBefore;
    int observed = 0;
    for (const DraggablePtr& item : draggables) {
        observed += controller.isObserving(item->cacheKey()) ? 1 : 0;
    }
    if (observed != count) {
        std::fprintf(stderr, "only %d of %d files are watched\n", observed, count);
        return 1;
    }

    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("drop_10000_build_ms %.1f ms\n", buildMs);
    std::printf("items_10000_processed_ms %.1f ms\n", processedMs);
    std::printf("items_10000_main_thread_ms %.1f ms\n", mainThreadMs);
    std::printf("items_10000_peak_mb %.1f MB\n", static_cast<double>(usage.ru_maxrss) / 1024.0);
    return 0;
}
