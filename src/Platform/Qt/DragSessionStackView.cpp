// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionStackView.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "StackLayout.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace Vantrope {

namespace {

constexpr int cancelDuration = 320;
constexpr int settleDuration = 220;
constexpr int removeDuration = 200;
constexpr int replaceDuration = 260;

QRectF fitted(const QSizeF& content, const QRectF& frame)
{
    const QSizeF size = content.scaled(frame.size(), Qt::KeepAspectRatio);
    return {frame.center().x() - size.width() / 2, frame.center().y() - size.height() / 2, size.width(),
            size.height()};
}

} // namespace

DragSessionStackView::DragSessionStackView(QWidget* parent)
    : QWidget(parent)
    , m_accent(palette().color(QPalette::Highlight))
{
    m_cancelAnimation.setObjectName(QStringLiteral("CancelMoveAnimation"));
    m_cancelAnimation.setDuration(cancelDuration);
    m_cancelAnimation.setEasingCurve(QEasingCurve::OutBack);
    connect(&m_cancelAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_pileOffset = value.toPointF();
        update();
    });

    m_settleAnimation.setDuration(settleDuration);
    m_settleAnimation.setStartValue(0.0);
    m_settleAnimation.setEndValue(1.0);
    m_settleAnimation.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_settleAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_settle = value.toDouble();
        update();
    });

    m_removeAnimation.setDuration(removeDuration);
    m_removeAnimation.setStartValue(1.0);
    m_removeAnimation.setEndValue(0.0);
    connect(&m_removeAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_fade = value.toDouble();
        update();
    });
    connect(&m_removeAnimation, &QVariantAnimation::finished, this, [this] {
        m_draggables.clear();
        m_pictures.clear();
        m_fade = 1.0;
        update();
        Q_EMIT countChanged();
    });

    m_replaceAnimation.setObjectName(QStringLiteral("replaceDraggableTransition"));
    m_replaceAnimation.setDuration(replaceDuration);
    m_replaceAnimation.setStartValue(0.0);
    m_replaceAnimation.setEndValue(1.0);
    connect(&m_replaceAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_replaceProgress = value.toDouble();
        update();
    });
    connect(&m_replaceAnimation, &QVariantAnimation::finished, this, [this] { m_replacedPicture.reset(); });
}

qsizetype DragSessionStackView::indexOf(const QString& cacheKey) const
{
    for (qsizetype i = m_draggables.size() - 1; i >= 0; --i) {
        if (m_draggables.at(i)->cacheKey() == cacheKey) {
            return i;
        }
    }
    return -1;
}

void DragSessionStackView::addDraggables(const DraggableList& draggables, bool animated)
{
    if (draggables.isEmpty()) {
        return;
    }
    if (m_removeAnimation.state() == QAbstractAnimation::Running) {
        m_removeAnimation.stop();
        m_draggables.clear();
        m_fade = 1.0;
    }
    m_draggables.append(draggables);
    dropUnusedPictures();
    if (animated) {
        m_settle = 0.0;
        m_settleAnimation.start();
    }
    update();
    Q_EMIT countChanged();
}

void DragSessionStackView::removeDraggable(const DraggablePtr& draggable)
{
    const QString key = draggable->cacheKey();
    const qsizetype before = m_draggables.size();
    m_draggables.removeIf([&key](const DraggablePtr& item) { return item->cacheKey() == key; });
    if (m_draggables.size() != before) {
        dropUnusedPictures();
        update();
        Q_EMIT countChanged();
    }
}

bool DragSessionStackView::replaceDraggable(const DraggablePtr& oldDraggable,
                                            const DraggablePtr& newDraggable)
{
    const qsizetype index = indexOf(oldDraggable->cacheKey());
    if (index < 0) {
        return false;
    }
    const bool visible = index >= m_draggables.size() - StackLayout::maximumVisibleItems;
    if (visible && index == m_draggables.size() - 1) {
        m_replacedPicture = picture(oldDraggable);
        m_replaceProgress = 0.0;
        m_replaceAnimation.start();
    }
    m_draggables[index] = newDraggable;
    dropUnusedPictures();
    update();
    return true;
}

void DragSessionStackView::removeAllDraggables(bool animated)
{
    if (m_draggables.isEmpty()) {
        return;
    }
    if (animated) {
        m_removeAnimation.start();
        return;
    }
    m_draggables.clear();
    m_pictures.clear();
    update();
    Q_EMIT countChanged();
}

void DragSessionStackView::refreshDraggable(const DraggablePtr& draggable)
{
    const QString key = draggable->cacheKey();
    m_pictures.removeIf([&key](const Picture& picture) { return picture.cacheKey == key; });
    update();
    Q_EMIT countChanged();
}

const DragSessionStackView::Picture& DragSessionStackView::picture(const DraggablePtr& draggable) const
{
    const QString key = draggable->cacheKey();
    for (const Picture& picture : m_pictures) {
        if (picture.cacheKey == key) {
            return picture;
        }
    }
    const QSize pixels = (itemSize * devicePixelRatioF()).toSize();
    m_pictures.append({key, DraggableItemImage::render(*draggable, pixels)});
    return m_pictures.last();
}

void DragSessionStackView::dropUnusedPictures() const
{
    QSet<QString> shown;
    const qsizetype first = qMax<qsizetype>(0, m_draggables.size() - StackLayout::maximumVisibleItems);
    for (qsizetype i = first; i < m_draggables.size(); ++i) {
        shown.insert(m_draggables.at(i)->cacheKey());
    }
    m_pictures.removeIf([&shown](const Picture& picture) { return !shown.contains(picture.cacheKey); });
}

QList<QRectF> DragSessionStackView::visibleItemFrames() const
{
    const QRectF home = StackLayout::frame(size(), itemSize);
    QList<QRectF> frames;
    for (const StackLayout::Placement& placement : StackLayout::placements(m_draggables.size())) {
        const QRectF frame = home.translated(placement.offset);
        QTransform turn;
        turn.translate(frame.center().x(), frame.center().y());
        turn.rotate(placement.angle);
        turn.translate(-frame.center().x(), -frame.center().y());
        frames.append(turn.mapRect(frame).translated(m_pileOffset));
    }
    return frames;
}

bool DragSessionStackView::hasItemAt(const QPointF& point) const
{
    const QList<QRectF> frames = visibleItemFrames();
    return std::any_of(frames.cbegin(), frames.cend(),
                       [&point](const QRectF& frame) { return frame.contains(point); });
}

void DragSessionStackView::setAccentColor(const QColor& color)
{
    m_accent = color;
    update();
}

void DragSessionStackView::setLifted(bool lifted)
{
    m_lifted = lifted;
    update();
}

void DragSessionStackView::cancelDragSession(const QPointF& draggingItemPosition)
{
    // The pile starts where the pointer let go, held to a reach that keeps it in sight.
    const QRectF frame = StackLayout::frame(size(), itemSize);
    QPointF start = draggingItemPosition - frame.center();
    const double reach = 90.0;
    const double length = std::hypot(start.x(), start.y());
    if (length > reach) {
        start *= reach / length;
    }
    m_cancelAnimation.stop();
    m_cancelAnimation.setStartValue(start);
    m_cancelAnimation.setEndValue(QPointF());
    m_pileOffset = start;
    m_cancelAnimation.start();
}

bool DragSessionStackView::isCancelAnimationRunning() const
{
    return m_cancelAnimation.state() == QAbstractAnimation::Running;
}

void DragSessionStackView::paintItem(QPainter& painter, const Picture& picture, const QRectF& frame,
                                     double angle) const
{
    const QImage& image = picture.rendered.image;
    if (image.isNull()) {
        return;
    }
    painter.save();
    painter.translate(frame.center());
    painter.rotate(angle);
    painter.translate(-frame.center());
    const QRectF target = fitted(QSizeF(image.size()) / image.devicePixelRatio(), frame);
    if (picture.rendered.style == DraggableItemImage::Style::photo) {
        // A print with a white border and a soft shadow, as a photo lies on a desk.
        const QRectF print = target.adjusted(-3, -3, 3, 3);
        painter.setPen(Qt::NoPen);
        for (int step = 3; step >= 1; --step) {
            painter.setBrush(QColor(0, 0, 0, 14 * (4 - step)));
            painter.drawRoundedRect(print.adjusted(-step, -step + 2, step, step + 2), 4 + step, 4 + step);
        }
        painter.setBrush(Qt::white);
        painter.drawRoundedRect(print, 3, 3);
        QPainterPath clip;
        clip.addRoundedRect(target, 2, 2);
        painter.setClipPath(clip);
    }
    painter.drawImage(target, image);
    painter.restore();
}

void DragSessionStackView::paintPile(QPainter& painter, const QPointF& offset, double scale,
                                     double opacity) const
{
    const QList<StackLayout::Placement> placements = StackLayout::placements(m_draggables.size());
    const QRectF home = StackLayout::frame(size(), itemSize);
    const QRectF centre(home.center() - QPointF(home.width() * scale / 2, home.height() * scale / 2) + offset,
                        home.size() * scale);
    painter.save();
    painter.setOpacity(opacity);
    // Bottom first, so the top item covers the others.
    for (qsizetype depth = placements.size() - 1; depth >= 0; --depth) {
        const DraggablePtr& draggable = m_draggables.at(m_draggables.size() - 1 - depth);
        const double angle = placements.at(depth).angle;
        const QRectF frame = centre.translated(placements.at(depth).offset * scale);
        const bool settling = depth == 0 && m_settle < 1.0;
        painter.save();
        if (settling) {
            painter.setOpacity(opacity * m_settle);
            painter.translate(frame.center());
            painter.scale(0.8 + 0.2 * m_settle, 0.8 + 0.2 * m_settle);
            painter.translate(-frame.center());
        }
        if (depth == 0 && m_replacedPicture && m_replaceProgress < 1.0) {
            painter.setOpacity(opacity * (1.0 - m_replaceProgress));
            paintItem(painter, *m_replacedPicture, frame, angle);
            painter.setOpacity(opacity * m_replaceProgress);
        }
        paintItem(painter, picture(draggable), frame, angle);
        painter.restore();
    }
    painter.restore();
}

void DragSessionStackView::paintEvent(QPaintEvent*)
{
    if (m_draggables.isEmpty()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    paintPile(painter, m_pileOffset, 1.0, (m_lifted ? 0.3 : 1.0) * m_fade);

    if (m_draggables.size() < 2 || m_lifted) {
        return;
    }
    // The count sits on the top item's corner, in the shelf's colour.
    const QRectF frame = StackLayout::frame(size(), itemSize).translated(m_pileOffset);
    QFont font = this->font();
    font.setPixelSize(11);
    font.setWeight(QFont::Bold);
    const QString count =
        m_draggables.size() > 999 ? QStringLiteral("999+") : QString::number(m_draggables.size());
    const double width = qMax(20.0, QFontMetricsF(font).horizontalAdvance(count) + 12.0);
    const QRectF badge(qMin(frame.right() - width / 2, this->width() - width - 1.0), frame.top() - 6, width,
                       20);
    painter.setOpacity(m_fade);
    painter.setPen(QPen(QColor(255, 255, 255, 230), 1.5));
    painter.setBrush(m_accent);
    painter.drawRoundedRect(badge, 10, 10);
    painter.setFont(font);
    painter.setPen(m_accent.lightness() > 170 ? QColor(30, 30, 30) : QColor(Qt::white));
    painter.drawText(badge, Qt::AlignCenter, count);
}

QPixmap DragSessionStackView::dragPixmap() const
{
    const double ratio = devicePixelRatioF();
    QPixmap pixmap((size() * ratio));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    paintPile(painter, QPointF(), 0.85, 0.9);
    return pixmap;
}

void DragSessionStackView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_draggables.isEmpty()) {
        // On an empty shelf the press belongs to the shelf, which moves the window.
        event->ignore();
        return;
    }
    m_pressed = true;
    m_pressPosition = event->position().toPoint();
}

void DragSessionStackView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_pressed || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    if ((event->position().toPoint() - m_pressPosition).manhattanLength() <
        QApplication::startDragDistance()) {
        return;
    }
    m_pressed = false;
    Q_EMIT dragRequested(m_pressPosition);
}

void DragSessionStackView::mouseReleaseEvent(QMouseEvent* event)
{
    m_pressed = false;
    if (event->modifiers().testFlag(Qt::AltModifier)) {
        qCInfo(lcDragSession) << "Option click detected, returning early...";
        return;
    }
}

void DragSessionStackView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_draggables.isEmpty()) {
        event->ignore();
        return;
    }
    // The second press of a double click starts no drag, even if the hand moves a little after it.
    m_pressed = false;
    event->accept();
    Q_EMIT doubleClicked();
}

} // namespace Vantrope
