// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShelfFixture.h"

#include "FakeShelfInterface.h"
#include "Models/Draggable/DraggableFile.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "TestSupport.h"

#include <QFileInfo>
#include <QTest>

namespace Vantrope::Test {

ShelfFixture::ShelfFixture(const Platform& platform)
    : platform(platform)
    , preferences(std::make_unique<MemoryPreferenceStorage>())
    , store(dir.filePath(QStringLiteral(".drag_sessions")), nullptr, platform.clock)
    , messages(platform.clock)
    , ui(platform.makeInterface ? platform.makeInterface(messages, preferences, platform.clock)
                                : std::make_unique<FakeShelfInterface>())
{
    if (platform.withController) {
        controller = std::make_unique<SessionController>(SessionController::Dependencies{
            store, preferences, *ui, platform.screens, messages, platform.clipboard, platform.clock,
            platform.fileWatcher, platform.desktopActions, platform.copyText});
    }
}

ShelfFixture::~ShelfFixture() = default;

QString ShelfFixture::file(const QString& name) const
{
    const QString path = dir.filePath(name);
    if (!QFileInfo::exists(path)) {
        writeFile(path, "bytes of " + name.toUtf8());
    }
    return path;
}

DraggablePtr ShelfFixture::fileItem(const QString& name) const
{
    return DraggableFile::make(QUrl::fromLocalFile(file(name)));
}

bool ShelfFixture::closeAllShelves() const
{
    QList<std::weak_ptr<DragSessionCoordinator>> closing;
    for (const auto& shelf : controller->coordinators()) {
        closing.append(shelf);
        shelf->stop(false);
    }
    return QTest::qWaitFor([&closing] {
        return std::all_of(closing.cbegin(), closing.cend(),
                           [](const auto& shelf) { return shelf.expired(); });
    });
}

FakeShelfInterface& ShelfFixture::fakeInterface() const
{
    return dynamic_cast<FakeShelfInterface&>(*ui);
}

} // namespace Vantrope::Test
