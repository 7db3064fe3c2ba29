// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Platform/Linux/InotifyFileWatcher.h"
#include "Platform/Qt/QtClipboardSource.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtScreenEnvironment.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

namespace Vantrope::Bench {

// Runs the event loop until `condition` holds; false when it did not within the time.
inline bool waitFor(const std::function<bool()>& condition, int milliseconds = 20000)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

// The shelf logic and its Qt windows, as the program puts them together.
struct QtShelves {
    QTemporaryDir folder;
    Preferences preferences{std::make_unique<MemoryPreferenceStorage>()};
    PersistentDragSessionStore store{folder.filePath(QStringLiteral(".drag_sessions")), nullptr,
                                     Clock::system()};
    MessageWindowCenter messages{Clock::system()};
    QtDragSessionUserInterface userInterface{{messages, preferences, Clock::system()}};
    QtScreenEnvironment screens;
    QtClipboardSource clipboard;
    SessionController controller{{store, preferences, userInterface, screens, messages, clipboard,
                                  Clock::system(), InotifyFileWatcher::shared()}};

    std::shared_ptr<DragSessionCoordinator> open(QPointF at = QPointF(700, 500))
    {
        controller.gestureBegan(at);
        return controller.coordinators().last();
    }

    void closeAll()
    {
        QList<std::weak_ptr<DragSessionCoordinator>> closing;
        for (const auto& shelf : controller.coordinators()) {
            closing.append(shelf);
            shelf->stop(false);
        }
        waitFor([&] {
            return std::all_of(closing.cbegin(), closing.cend(),
                               [](const auto& shelf) { return shelf.expired(); });
        });
    }
};

} // namespace Vantrope::Bench
