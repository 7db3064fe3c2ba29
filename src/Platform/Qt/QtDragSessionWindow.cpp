// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "QtDragSessionWindow.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "QtDragSessionView.h"
#include "QtScreenEnvironment.h"

#ifdef WITH_X11
#include "Platform/X11/X11WindowHints.h"
#endif

#include <QCursor>
#include <QGuiApplication>
#include <QPainterPath>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace Vantrope {

namespace {

constexpr int fadeDuration = 180;
constexpr int retractDuration = 260;

bool isX11()
{
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

} // namespace

QtDragSessionWindow::QtDragSessionWindow(quint64 windowNumber, const QSizeF& size)
    : m_windowNumber(windowNumber)
    , m_widget(
          std::make_unique<QWidget>(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint))
{
    m_widget->setAttribute(Qt::WA_TranslucentBackground);
    m_widget->setAttribute(Qt::WA_DeleteOnClose, false);
    m_widget->setFixedSize(size.toSize());
    m_widget->setWindowTitle(QStringLiteral("Vantrope"));
    auto* layout = new QVBoxLayout(m_widget.get());
    layout->setContentsMargins(0, 0, 0, 0);

    m_alphaAnimation.setTargetObject(m_widget.get());
    m_alphaAnimation.setPropertyName("windowOpacity");
    m_alphaAnimation.setDuration(fadeDuration);
    m_moveAnimation.setTargetObject(m_widget.get());
    m_moveAnimation.setPropertyName("pos");
    m_moveAnimation.setDuration(retractDuration);
    m_moveAnimation.setEasingCurve(QEasingCurve::OutCubic);

    // The hints go on the native window before it is first mapped, when the window manager reads them.
    m_widget->winId();
#ifdef WITH_X11
    if (isX11()) {
        X11WindowHints::apply(*m_widget->windowHandle(), m_allDesktops);
    }
#endif
}

QtDragSessionWindow::~QtDragSessionWindow()
{
    // The view belongs to its own owner; it must not go down with the window.
    if (m_view) {
        m_view->setParent(nullptr);
    }
}

void QtDragSessionWindow::park()
{
    // Beyond the top left of all screens together: no screen shows it, whatever their layout.
    QRect desktop;
    for (const QScreen* screen : QGuiApplication::screens()) {
        desktop |= screen->geometry();
    }
    m_widget->setAttribute(Qt::WA_ShowWithoutActivating);
    m_widget->move(desktop.topLeft() - QPoint(m_widget->width(), m_widget->height()) - QPoint(100, 100));
    // Window managers keep part of a window on screen whatever it asks for: a shape with nothing in it
    // leaves that part unseen and lets clicks through.
    m_parked = true;
    m_widget->setMask(QRegion(-1, -1, 1, 1));
    m_widget->show();
}

void QtDragSessionWindow::unpark()
{
    if (m_parked) {
        m_parked = false;
        m_widget->clearMask();
        applyShape();
    }
}

void QtDragSessionWindow::setSize(const QSizeF& size)
{
    m_widget->setFixedSize(size.toSize());
}

void QtDragSessionWindow::setContentView(QtDragSessionView* view)
{
    m_view = view;
    m_widget->layout()->addWidget(view);
    // A parked window is already mapped: the layout alone would show the view only later.
    view->show();
    applyShape();
}

void QtDragSessionWindow::applyShape()
{
#ifdef WITH_X11
    const bool composited = !isX11() || X11WindowHints::hasCompositingManager();
#else
    const bool composited = true;
#endif
    if (!m_view || m_parked) {
        return;
    }
    m_view->setOpaque(!composited);
    if (composited) {
        m_widget->clearMask();
        return;
    }
    m_view->resize(m_widget->size());
    m_widget->setMask(QRegion(m_view->cardPath().toFillPolygon().toPolygon()));
}

bool QtDragSessionWindow::isVisible() const
{
    return m_widget->isVisible();
}

double QtDragSessionWindow::alphaValue() const
{
    return m_alphaAnimation.state() == QAbstractAnimation::Running ? m_alphaAnimation.endValue().toDouble()
                                                                   : m_widget->windowOpacity();
}

void QtDragSessionWindow::setAlphaValue(double alpha, bool animated)
{
    m_alphaAnimation.stop();
    if (!animated) {
        m_widget->setWindowOpacity(alpha);
        return;
    }
    m_alphaAnimation.setStartValue(m_widget->windowOpacity());
    m_alphaAnimation.setEndValue(alpha);
    m_alphaAnimation.start();
}

QRectF QtDragSessionWindow::frame() const
{
    return QtScreenEnvironment::toBottomLeft(QRectF(m_widget->geometry()));
}

void QtDragSessionWindow::setFrameOrigin(const QPointF& origin)
{
    m_moveAnimation.stop();
    m_retracted = false;
    const QRectF placed = QtScreenEnvironment::toTopLeft(QRectF(origin, QSizeF(m_widget->size())));
    m_widget->move(placed.topLeft().toPoint());
}

void QtDragSessionWindow::showAndActivate()
{
    m_widget->setAttribute(Qt::WA_ShowWithoutActivating, false);
    unpark();
    m_widget->show();
    m_widget->raise();
    m_widget->activateWindow();
}

void QtDragSessionWindow::showWithoutActivating()
{
    m_widget->setAttribute(Qt::WA_ShowWithoutActivating);
    unpark();
    m_widget->show();
    m_widget->raise();
}

void QtDragSessionWindow::close()
{
    m_moveAnimation.stop();
    m_alphaAnimation.stop();
    m_widget->hide();
}

void QtDragSessionWindow::setTitle(const QString& title)
{
    m_widget->setWindowTitle(title.isEmpty() ? QStringLiteral("Vantrope") : title);
}

void QtDragSessionWindow::applyLabel(const DragSessionLabel& label)
{
    const bool allDesktops = !label.keepInOwnSpace;
    if (allDesktops == m_allDesktops) {
        return;
    }
    m_allDesktops = allDesktops;
#ifdef WITH_X11
    if (isX11()) {
        X11WindowHints::apply(*m_widget->windowHandle(), m_allDesktops);
    }
#endif
}

void QtDragSessionWindow::retract()
{
    const QScreen* screen = m_widget->screen();
    if (!screen) {
        qCWarning(lcDragSession) << "Failed to snap window as it's not have a screen";
        return;
    }
    const QRect bounds = screen->geometry();
    const QRect geometry = m_widget->geometry();
    const double width = geometry.width();
    // To the nearer side edge, leaving a strip to pull it back by.
    const bool right = geometry.center().x() >= bounds.center().x();
    const int x = right ? int(bounds.x() + bounds.width() - retractedVisibleShare * width)
                        : int(bounds.x() - (1.0 - retractedVisibleShare) * width);
    m_moveAnimation.stop();
    m_moveAnimation.setStartValue(geometry.topLeft());
    m_moveAnimation.setEndValue(QPoint(x, geometry.y()));
    m_moveAnimation.start();
    m_retracted = true;
}

std::optional<Screen> QtDragSessionWindow::screen() const
{
    const QScreen* screen = QGuiApplication::screenAt(m_widget->geometry().center());
    if (!screen) {
        screen = m_widget->screen();
    }
    return screen ? std::optional(QtScreenEnvironment::screen(*screen)) : std::nullopt;
}

bool QtDragSessionWindow::containsMouse() const
{
    return m_widget->isVisible() && m_widget->geometry().contains(QCursor::pos());
}

} // namespace Vantrope
