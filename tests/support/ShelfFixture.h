// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/MessageWindowCenter.h"
#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Domains/SessionController/SessionController.h"
#include "Preferences/Preferences.h"

#include <functional>
#include <memory>
#include <QTemporaryDir>

namespace Vantrope::Test {

class FakeShelfInterface;

// What every test of shelves builds alike: preferences in memory, a recent-shelves file in a temporary
// folder, the message centre, the shelf interface and, unless the test builds the program's own, the
// session controller over them. The test picks the platform: fakes and a ManualClock for the logic,
// Qt windows, the system clock and inotify on a display.
class ShelfFixture final {
public:
    using MakeInterface =
        std::function<std::unique_ptr<DragSessionUserInterface>(MessageWindowCenter&, Preferences&, Clock&)>;

    struct Platform {
        Clock& clock;
        FileWatcher& fileWatcher;
        ScreenEnvironment& screens;
        const PasteboardSource& clipboard;
        // Empty: a FakeShelfInterface.
        MakeInterface makeInterface = {};
        bool withController = true;
        DesktopActions* desktopActions = nullptr;
        std::function<void(const QString& text)> copyText = {};
    };

    explicit ShelfFixture(const Platform& platform);
    ~ShelfFixture();
    ShelfFixture(const ShelfFixture&) = delete;
    ShelfFixture& operator=(const ShelfFixture&) = delete;

    // The path of a file in the fixture's folder, written with "bytes of <name>" unless it exists.
    QString file(const QString& name) const;
    DraggablePtr fileItem(const QString& name) const;

    // Stops every shelf, those a message keeps open too; true once each is gone, windows and all.
    bool closeAllShelves() const;

    // The shelf windows and views, when the interface is the fake one.
    FakeShelfInterface& fakeInterface() const;

    Platform platform;
    QTemporaryDir dir;
    Preferences preferences;
    PersistentDragSessionStore store;
    MessageWindowCenter messages;
    std::unique_ptr<DragSessionUserInterface> ui;
    std::unique_ptr<SessionController> controller;
};

} // namespace Vantrope::Test
