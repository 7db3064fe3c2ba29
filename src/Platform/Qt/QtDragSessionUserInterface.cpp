// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtDragSessionUserInterface.h"

#include "Domains/DragSession/DragSessionWindowPlacement.h"
#include "QtDragSessionView.h"
#include "QtDragSessionWindow.h"

#include <QGuiApplication>
#include <QTimer>

#ifdef WITH_X11
#include "Platform/X11/X11DragSourceTracker.h"
#include "Platform/X11/X11TimestampGuard.h"
#endif

namespace Vantrope {

QtDragSessionUserInterface::QtDragSessionUserInterface(const Dependencies& dependencies)
    : m_dependencies(dependencies)
{
#ifdef WITH_X11
    // Drops of promised files need the source window, which only the XDND messages tell.
    X11DragSourceTracker::instance();
    X11TimestampGuard::instance();
#endif
    // Later, so that starting the program does not wait for a window nobody has asked for yet.
    QTimer::singleShot(0, &m_context, [this] { prepareSpareWindow(); });
}

QtDragSessionUserInterface::~QtDragSessionUserInterface() = default;

void QtDragSessionUserInterface::prepareSpareWindow()
{
    // Only X11 sources look for targets this way; elsewhere (and offscreen in tests) there is no need.
    if (m_spareWindow || QGuiApplication::platformName() != QLatin1String("xcb")) {
        return;
    }
    m_spareWindow =
        std::make_unique<QtDragSessionWindow>(++m_lastWindowNumber, DragSessionWindowPlacement::defaultSize);
    m_spareWindow->park();
}

DragSessionUserInterface::Parts QtDragSessionUserInterface::makeShelf(DragSessionViewDelegate& delegate,
                                                                      const QSizeF& size)
{
    std::unique_ptr<QtDragSessionWindow> window = std::move(m_spareWindow);
    if (window) {
        window->setSize(size);
    } else {
        window = std::make_unique<QtDragSessionWindow>(++m_lastWindowNumber, size);
    }
    const quint64 number = window->windowNumber();
    QTimer::singleShot(0, &m_context, [this] { prepareSpareWindow(); });
    auto view = std::make_unique<QtDragSessionView>(QtDragSessionView::Dependencies{
        delegate, m_dependencies.messages, m_dependencies.preferences, m_dependencies.clock, number});
    window->setContentView(view.get());
    return {std::move(window), std::move(view)};
}

} // namespace Vantrope
