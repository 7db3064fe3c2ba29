// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DraggableItemImage.h"
#include "Models/Draggable/Draggable.h"

#include <QColor>
#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

namespace Vantrope {

// The pile of item previews on a shelf. It holds an entry for every item but draws, and makes pictures
// for, only the few on top, so that a shelf of thousands costs what a shelf of five does.
class DragSessionStackView final : public QWidget {
    Q_OBJECT
public:
    static constexpr QSizeF itemSize{88.0, 88.0};

    explicit DragSessionStackView(QWidget* parent = nullptr);

    // Adds items on top of the pile; `animated` lets the new ones settle into place.
    void addDraggables(const DraggableList& draggables, bool animated);
    void removeDraggable(const DraggablePtr& draggable);
    // False when the old item has no entry.
    bool replaceDraggable(const DraggablePtr& oldDraggable, const DraggablePtr& newDraggable);
    void removeAllDraggables(bool animated);
    // Draws the item again, for a promise whose file has arrived.
    void refreshDraggable(const DraggablePtr& draggable);

    const DraggableList& draggables() const { return m_draggables; }
    // The frames of the drawn items, top first, in this widget's coordinates.
    QList<QRectF> visibleItemFrames() const;
    bool hasItemAt(const QPointF& point) const;

    void setAccentColor(const QColor& color);
    // While the items are being dragged out they show faintly in place.
    void setLifted(bool lifted);
    // Brings the pile back from where a refused drag out let go of it.
    void cancelDragSession(const QPointF& draggingItemPosition);
    bool isCancelAnimationRunning() const;
    // The picture under the pointer while the items are dragged out.
    QPixmap dragPixmap() const;

Q_SIGNALS:
    void dragRequested(const QPoint& pressPosition);
    // A double click on the pile.
    void doubleClicked();
    void countChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    struct Picture {
        QString cacheKey;
        DraggableItemImage::Rendered rendered;
    };

    const Picture& picture(const DraggablePtr& draggable) const;
    void dropUnusedPictures() const;
    void paintItem(QPainter& painter, const Picture& picture, const QRectF& frame, double angle) const;
    void paintPile(QPainter& painter, const QPointF& offset, double scale, double opacity) const;
    qsizetype indexOf(const QString& cacheKey) const;

    DraggableList m_draggables;
    // Pictures of the items on top only, by cache key.
    mutable QList<Picture> m_pictures;
    QColor m_accent;
    bool m_lifted = false;
    bool m_pressed = false;
    QPoint m_pressPosition;
    QPointF m_pileOffset;
    double m_settle = 1.0;
    double m_fade = 1.0;
    std::optional<Picture> m_replacedPicture;
    double m_replaceProgress = 1.0;
    QVariantAnimation m_cancelAnimation;
    QVariantAnimation m_settleAnimation;
    QVariantAnimation m_removeAnimation;
    QVariantAnimation m_replaceAnimation;
};

} // namespace Vantrope
