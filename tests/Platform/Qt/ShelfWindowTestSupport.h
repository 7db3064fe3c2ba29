// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Platform/Qt/DragSessionStackView.h"
#include "Platform/Qt/QtDragSessionUserInterface.h"
#include "Platform/Qt/QtDragSessionView.h"
#include "Platform/Qt/QtDragSessionWindow.h"
#include "support/ShelfFixture.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

namespace Vantrope::Test {

// The shelves of the program: Qt windows on the test display.
inline std::unique_ptr<DragSessionUserInterface> makeQtShelves(MessageWindowCenter& messages,
                                                               Preferences& preferences, Clock& clock)
{
    return std::make_unique<QtDragSessionUserInterface>(
        QtDragSessionUserInterface::Dependencies{messages, preferences, clock});
}

inline QtDragSessionWindow& shelfWindow(const DragSessionCoordinator& shelf)
{
    return dynamic_cast<QtDragSessionWindow&>(shelf.window());
}

inline QtDragSessionView& shelfView(const DragSessionCoordinator& shelf)
{
    return dynamic_cast<QtDragSessionView&>(shelf.view());
}

inline DragSessionStackView& stackView(const DragSessionCoordinator& shelf)
{
    return shelfView(shelf).stackView();
}

inline QPoint shelfCentre(const DragSessionCoordinator& shelf)
{
    return shelfWindow(shelf).widget().geometry().center();
}

// Where a drag out of the shelf starts: the middle of its top item, in screen pixels.
inline QPoint pileCentre(const DragSessionCoordinator& shelf)
{
    DragSessionStackView& stack = stackView(shelf);
    return stack.mapToGlobal(stack.visibleItemFrames().first().center().toPoint());
}

// A shelf opened by a gesture, centred on a point given in screen pixels from the top left, once the
// window manager has shown it.
inline std::shared_ptr<DragSessionCoordinator> openShelf(SessionController& controller, const QPoint& centre)
{
    const QRectF primary = QGuiApplication::primaryScreen()->geometry();
    controller.gestureBegan(QPointF(centre.x(), primary.height() - centre.y()));
    auto shelf = controller.coordinators().last();
    if (!QTest::qWaitForWindowExposed(&shelfWindow(*shelf).widget())) {
        QTest::qFail("The shelf window was never shown", __FILE__, __LINE__);
    }
    // The window manager places the window when it maps it; give it that moment.
    QTest::qWait(150);
    return shelf;
}

} // namespace Vantrope::Test
