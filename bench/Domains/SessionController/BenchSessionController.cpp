// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// The cost of deciding whether a shake opens a shelf while 50 shelves are open.
#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Models/Draggable/DraggableFile.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/FakeShelfInterface.h"

#include <algorithm>
#include <cstdio>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <vector>

using namespace Vantrope;

int main(int argc, char* argv[])
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QFile held(dir.filePath(QStringLiteral("held.txt")));
    if (!held.open(QIODevice::WriteOnly) || held.write("x") != 1) {
        return 1;
    }
    held.close();

    Preferences preferences(std::make_unique<MemoryPreferenceStorage>());
    PersistentDragSessionStore store(dir.filePath(QStringLiteral(".drag_sessions")), nullptr,
                                     Clock::system());
    Test::FakeShelfInterface ui;
    Test::FakeScreens screens;
    Test::FakeClipboard clipboard;
    MessageWindowCenter messages(Clock::system());
    SessionController controller({store, preferences, ui, screens, messages, clipboard, Clock::system(),
                                  InotifyFileWatcher::shared()});

    // 49 shelves holding an item, and the one empty shelf on screen last, so every decision looks at all.
    for (int i = 0; i < 49; ++i) {
        controller.startSession(DragSessionSource::MenuBar{})
            ->appendItems({DraggableFile::make(QUrl::fromLocalFile(held.fileName()))});
    }
    controller.startSession(DragSessionSource::MenuBar{});

    constexpr int rounds = 2000;
    std::vector<double> samples;
    samples.reserve(rounds);
    QElapsedTimer timer;
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        controller.gestureBegan(QPointF(400, 400));
        samples.push_back(static_cast<double>(timer.nsecsElapsed()) / 1000.0);
    }
    if (controller.coordinators().size() != 50) {
        std::fprintf(stderr, "a shake opened a shelf although an empty one was on screen\n");
        return 1;
    }
    std::nth_element(samples.begin(), samples.begin() + rounds / 2, samples.end());
    std::printf("gesture_began_50_us %.2f us\n", samples[rounds / 2]);
    return 0;
}
