// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QStyledItemDelegate>

namespace Vantrope {

// Draws one item of the item list: in list mode a row with the picture, the name and, under it, the
// kind and size; in grid mode a tile with the picture over the name. Items whose file is gone are greyed.
class DragSessionOutlineItemDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    enum class Mode { list, grid };

    static constexpr int listPicture = 32;
    static constexpr int gridPicture = 64;
    static constexpr int listRowHeight = 44;
    static constexpr QSize gridCell{108, 104};

    explicit DragSessionOutlineItemDelegate(QObject* parent = nullptr);

    void setMode(Mode mode) { m_mode = mode; }
    Mode mode() const { return m_mode; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    Mode m_mode = Mode::list;
};

} // namespace Vantrope
