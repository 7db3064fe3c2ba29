// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionOutlineItemDelegate.h"

#include "DragSessionOutlineModel.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace Vantrope {

namespace {

void paintPicture(QPainter& painter, const QVariant& picture, const QRect& area)
{
    if (picture.userType() == QMetaType::QIcon) {
        picture.value<QIcon>().paint(&painter, area, Qt::AlignCenter);
        return;
    }
    const QPixmap pixmap = picture.value<QPixmap>();
    if (pixmap.isNull()) {
        return;
    }
    QSizeF shown = pixmap.deviceIndependentSize();
    shown.scale(QSizeF(area.size()).boundedTo(shown), Qt::KeepAspectRatio);
    QRectF target(QPointF(), shown);
    target.moveCenter(QRectF(area).center());
    painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
}

} // namespace

DragSessionOutlineItemDelegate::DragSessionOutlineItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{}

QSize DragSessionOutlineItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    if (m_mode == Mode::grid) {
        return gridCell;
    }
    return {option.rect.width() > 0 ? option.rect.width() : 200, listRowHeight};
}

void DragSessionOutlineItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                           const QModelIndex& index) const
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QPalette& palette = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QRect cell = option.rect.adjusted(2, 2, -2, -2);
    if (selected) {
        QColor fill = palette.color(QPalette::Highlight);
        if (!option.state.testFlag(QStyle::State_HasFocus) && !option.state.testFlag(QStyle::State_Active)) {
            fill.setAlpha(170);
        }
        painter->setPen(Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(cell, 6, 6);
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        QColor hover = palette.color(QPalette::Text);
        hover.setAlpha(18);
        painter->setPen(Qt::NoPen);
        painter->setBrush(hover);
        painter->drawRoundedRect(cell, 6, 6);
    }
    if (index.data(DragSessionOutlineModel::MissingRole).toBool()) {
        painter->setOpacity(0.4);
    }
    const QColor ink = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    QColor faint = ink;
    faint.setAlpha(150);
    const QString name = index.data(Qt::DisplayRole).toString().simplified();
    const QVariant picture = index.data(Qt::DecorationRole);
    QFont font = option.font;

    if (m_mode == Mode::grid) {
        const QRect pictureArea(cell.left() + (cell.width() - gridPicture) / 2, cell.top() + 4, gridPicture,
                                gridPicture);
        paintPicture(*painter, picture, pictureArea);
        painter->setFont(font);
        painter->setPen(ink);
        const QRect text(cell.left() + 4, pictureArea.bottom() + 4, cell.width() - 8,
                         cell.bottom() - pictureArea.bottom() - 4);
        painter->drawText(text, Qt::AlignHCenter | Qt::AlignTop,
                          option.fontMetrics.elidedText(name, Qt::ElideMiddle, text.width()));
        painter->restore();
        return;
    }

    const QRect pictureArea(cell.left() + 6, cell.top() + (cell.height() - listPicture) / 2, listPicture,
                            listPicture);
    paintPicture(*painter, picture, pictureArea);
    const int textLeft = pictureArea.right() + 10;
    const int textWidth = cell.right() - 8 - textLeft;
    const QString size = index.data(DragSessionOutlineModel::SizeRole).toString();
    const QString kind = index.data(DragSessionOutlineModel::KindRole).toString();
    const QString details = size.isEmpty() ? kind : kind + QStringLiteral(" · ") + size;
    painter->setFont(font);
    painter->setPen(ink);
    const QRect nameArea(textLeft, cell.top() + 4, textWidth, cell.height() / 2 - 2);
    painter->drawText(nameArea, Qt::AlignLeft | Qt::AlignBottom,
                      option.fontMetrics.elidedText(name, Qt::ElideMiddle, textWidth));
    QFont small = font;
    small.setPointSizeF(qMax(6.0, font.pointSizeF() * 0.85));
    painter->setFont(small);
    painter->setPen(faint);
    const QRect detailArea(textLeft, cell.top() + cell.height() / 2 + 1, textWidth, cell.height() / 2 - 4);
    painter->drawText(detailArea, Qt::AlignLeft | Qt::AlignTop,
                      QFontMetrics(small).elidedText(details, Qt::ElideRight, textWidth));
    painter->restore();
}

} // namespace Vantrope
