// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionButton.h"

#include <QPainter>
#include <QPainterPath>

namespace Vantrope {

DragSessionButton::DragSessionButton(Glyph glyph, QWidget* parent)
    : QAbstractButton(parent)
    , m_glyph(glyph)
{
    setFixedSize(diameter, diameter);
    setCursor(Qt::ArrowCursor);
    setFocusPolicy(Qt::NoFocus);
}

void DragSessionButton::setDark(bool dark)
{
    m_dark = dark;
    update();
}

void DragSessionButton::enterEvent(QEnterEvent* event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void DragSessionButton::leaveEvent(QEvent* event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}

void DragSessionButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(1, 1, -1, -1);
    const int alpha = isDown() || isChecked() ? 150 : m_hovered ? 110 : 70;
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_dark ? QColor(255, 255, 255, alpha / 2) : QColor(0, 0, 0, alpha / 2));
    painter.drawEllipse(circle);

    const QColor ink = m_dark ? QColor(255, 255, 255, 220) : QColor(40, 40, 45, 220);
    QPen pen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const QPointF centre = circle.center();
    const double r = circle.width() * 0.22;
    if (m_glyph == Glyph::close) {
        painter.drawLine(centre + QPointF(-r, -r), centre + QPointF(r, r));
        painter.drawLine(centre + QPointF(-r, r), centre + QPointF(r, -r));
        return;
    }
    if (m_glyph == Glyph::menu) {
        // Three dots: the shelf's action menu.
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        for (const double dx : {-r * 1.3, 0.0, r * 1.3}) {
            painter.drawEllipse(centre + QPointF(dx, 0), 1.4, 1.4);
        }
        return;
    }
    if (m_glyph == Glyph::disclosure) {
        // A chevron: down opens the item list, up while it is open.
        const double tip = isChecked() ? -r * 0.55 : r * 0.55;
        painter.drawPolyline(
            QPolygonF({centre + QPointF(-r, -tip), centre + QPointF(0, tip), centre + QPointF(r, -tip)}));
        return;
    }
    // An arrow turning back on itself: bring back the last shelf.
    const QRectF arc(centre.x() - r * 1.2, centre.y() - r * 1.2, r * 2.4, r * 2.4);
    QPainterPath path;
    path.arcMoveTo(arc, 120);
    path.arcTo(arc, 120, 270);
    painter.drawPath(path);
    const QPointF tip = path.pointAtPercent(0.0);
    painter.drawLine(tip, tip + QPointF(r * 0.9, -r * 0.05));
    painter.drawLine(tip, tip + QPointF(r * 0.15, r * 0.9));
}

} // namespace Vantrope
