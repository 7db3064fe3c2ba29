// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints how long a shelf of 1,000 files takes from its last item to a ready action menu, with the
// desktop's real actions (applications through GIO, share targets), as "name value unit" lines.

#include "Domains/Actions/ActionsController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Platform/Desktop/LinuxDesktopActions.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/BenchSupport.h"

#include <chrono>
#include <cstdio>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <vector>

using namespace Vantrope;

namespace {

constexpr int itemCount = 1000;
constexpr int repetitions = 5;

// Files of the kinds people drop: pictures, documents, text, archives.
DraggableList makeItems(const QTemporaryDir& folder)
{
    static const char* const extensions[] = {"png", "jpg", "pdf", "txt", "odt", "zip", "mp4", "html"};
    DraggableList items;
    for (int index = 0; index < itemCount; ++index) {
        const QString path = folder.filePath(QStringLiteral("file %1.%2")
                                                 .arg(index)
                                                 .arg(QLatin1String(extensions[index % std::size(extensions)])));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            return {};
        }
        file.write("x");
        items.append(DraggableFile::make(QUrl::fromLocalFile(path)));
    }
    return items;
}

} // namespace

int main(int argc, char* argv[])
{
    QLoggingCategory::setFilterRules(QStringLiteral("vantrope.*.info=false"));
    QApplication application(argc, argv);
    QTemporaryDir folder;
    const DraggableList items = makeItems(folder);
    if (items.size() != itemCount) {
        std::fprintf(stderr, "could not write the items\n");
        return 1;
    }
    Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
    LinuxDesktopActions desktop;

    std::vector<double> milliseconds;
    for (int run = 0; run < repetitions; ++run) {
        QElapsedTimer timer;
        timer.start();
        ActionsController::Services services;
        services.shareActionsProvider = [&desktop](const QList<QUrl>& urls) {
            return desktop.makeShareActions(urls);
        };
        services.archiver = desktop.archiver();
        ActionsController controller(items, desktop.makeItemActions(), preferences, std::move(services));
        bool ready = false;
        controller.requestMenu({}, [&ready](const ActionsController::MenuResult&) { ready = true; });
        while (!ready) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        }
        milliseconds.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::printf("action_menu_ready_1000_ms %.1f ms\n", Bench::median(milliseconds));
    return 0;
}
