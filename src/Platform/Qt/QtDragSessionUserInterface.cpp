#include "QtDragSessionUserInterface.h"

#include "QtDragSessionView.h"
#include "QtDragSessionWindow.h"

#ifdef WITH_X11
#include "Platform/X11/X11DragSourceTracker.h"
#endif

namespace Vantrope {

QtDragSessionUserInterface::QtDragSessionUserInterface(const Dependencies& dependencies)
    : m_dependencies(dependencies)
{
#ifdef WITH_X11
    // Drops of promised files need the source window, which only the XDND messages tell.
    X11DragSourceTracker::instance();
#endif
}

DragSessionUserInterface::Parts QtDragSessionUserInterface::makeShelf(DragSessionViewDelegate& delegate,
                                                                      const QSizeF& size)
{
    const quint64 number = ++m_lastWindowNumber;
    auto window = std::make_unique<QtDragSessionWindow>(number, size);
    auto view = std::make_unique<QtDragSessionView>(QtDragSessionView::Dependencies{
        delegate, m_dependencies.messages, m_dependencies.preferences, m_dependencies.clock, number});
    window->setContentView(view.get());
    return {std::move(window), std::move(view)};
}

} // namespace Vantrope
