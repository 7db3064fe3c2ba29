// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionOverlayView.h"

#include <QDesktopServices>
#include <QMouseEvent>
#include <QPainter>

namespace Vantrope {

namespace {

constexpr int padding = 9;
constexpr int iconSize = 16;
constexpr int barHeight = 4;

QFont titleFont(const QFont& base)
{
    QFont font = base;
    font.setPixelSize(11);
    font.setWeight(QFont::DemiBold);
    return font;
}

QFont textFont(const QFont& base)
{
    QFont font = base;
    font.setPixelSize(10);
    return font;
}

QColor iconColor(DragSessionOverlayView::Icon icon, const QColor& accent)
{
    switch (icon) {
    case DragSessionOverlayView::Icon::warning:
        return {255, 176, 32};
    case DragSessionOverlayView::Icon::error:
        return {255, 84, 76};
    case DragSessionOverlayView::Icon::screenshot:
        return {176, 124, 255};
    case DragSessionOverlayView::Icon::info:
    case DragSessionOverlayView::Icon::link:
    case DragSessionOverlayView::Icon::none:
        break;
    }
    return accent;
}

QString iconGlyph(DragSessionOverlayView::Icon icon)
{
    switch (icon) {
    case DragSessionOverlayView::Icon::warning:
    case DragSessionOverlayView::Icon::error:
        return QStringLiteral("!");
    case DragSessionOverlayView::Icon::info:
        return QStringLiteral("i");
    case DragSessionOverlayView::Icon::screenshot:
        return QStringLiteral("◰");
    case DragSessionOverlayView::Icon::link:
        return QStringLiteral("✓");
    case DragSessionOverlayView::Icon::none:
        break;
    }
    return {};
}

} // namespace

DragSessionOverlayView::DragSessionOverlayView(QWidget* parent)
    : QWidget(parent)
    , m_accent(88, 156, 255)
{
    hide();
}

void DragSessionOverlayView::setContent(const Content& content)
{
    m_content = content;
    setCursor(content.link ? Qt::PointingHandCursor : Qt::ArrowCursor);
    setToolTip(content.link ? content.link->toDisplayString() : QString());
    update();
}

void DragSessionOverlayView::setAccentColor(const QColor& color)
{
    m_accent = color;
    update();
}

QRectF DragSessionOverlayView::textArea(const QRectF& panel) const
{
    const double left = m_content.icon == Icon::none ? padding : padding * 2 + iconSize - 2;
    return panel.adjusted(left, padding, -padding, -padding);
}

int DragSessionOverlayView::heightForWidth(int width) const
{
    const QRectF area = textArea(QRectF(0, 0, width, 1000));
    const int textWidth = int(area.width());
    int height = padding * 2;
    if (!m_content.title.isEmpty()) {
        height += QFontMetrics(titleFont(font()))
                      .boundingRect(0, 0, textWidth, 1000, Qt::TextWordWrap, m_content.title)
                      .height();
    }
    if (!m_content.text.isEmpty()) {
        const QString text = m_content.link ? m_content.link->toDisplayString() : m_content.text;
        // A link stays on one line; other text wraps, up to four lines.
        const QFontMetrics metrics(textFont(font()));
        height += m_content.link
                      ? metrics.height()
                      : qMin(metrics.boundingRect(0, 0, textWidth, 1000, Qt::TextWordWrap, text).height(),
                             metrics.lineSpacing() * 4);
    }
    if (m_content.progress) {
        height += barHeight + 6;
    }
    return qMax(height, iconSize + padding * 2);
}

void DragSessionOverlayView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF panel = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(QColor(255, 255, 255, 30), 1));
    painter.setBrush(QColor(28, 28, 32));
    painter.drawRoundedRect(panel, 11, 11);

    if (m_content.icon != Icon::none) {
        const QRectF badge(panel.left() + padding, panel.top() + padding, iconSize, iconSize);
        painter.setPen(Qt::NoPen);
        painter.setBrush(iconColor(m_content.icon, m_accent));
        painter.drawEllipse(badge);
        QFont glyph = titleFont(font());
        glyph.setPixelSize(11);
        glyph.setWeight(QFont::Bold);
        painter.setFont(glyph);
        painter.setPen(QColor(20, 20, 24));
        painter.drawText(badge, Qt::AlignCenter, iconGlyph(m_content.icon));
    }

    QRectF area = textArea(panel);
    if (!m_content.title.isEmpty()) {
        painter.setFont(titleFont(font()));
        painter.setPen(Qt::white);
        QRectF used;
        painter.drawText(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, m_content.title, &used);
        area.setTop(used.bottom());
    }
    if (!m_content.text.isEmpty()) {
        painter.setFont(textFont(font()));
        painter.setPen(m_content.link ? m_accent.lighter(130) : QColor(255, 255, 255, 190));
        if (m_content.link) {
            const QString shown =
                QFontMetrics(painter.font())
                    .elidedText(m_content.link->toDisplayString(), Qt::ElideMiddle, int(area.width()));
            painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, shown);
        } else {
            painter.save();
            painter.setClipRect(area);
            painter.drawText(area, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, m_content.text);
            painter.restore();
        }
    }
    if (m_content.progress) {
        const QRectF track(area.left(), panel.bottom() - padding - barHeight, area.width(), barHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, 45));
        painter.drawRoundedRect(track, 2, 2);
        QRectF done = track;
        done.setWidth(track.width() * qBound(0.0, *m_content.progress, 1.0));
        painter.setBrush(m_accent);
        painter.drawRoundedRect(done, 2, 2);
    }
}

void DragSessionOverlayView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_content.link && event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        QDesktopServices::openUrl(*m_content.link);
    }
}

} // namespace Vantrope
