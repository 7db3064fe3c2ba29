// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionOutlineListView.h"

namespace Vantrope {

DragSessionOutlineListView::DragSessionOutlineListView(QWidget* parent)
    : QListView(parent)
{
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
}

void DragSessionOutlineListView::startDrag(Qt::DropActions)
{
    Q_EMIT dragRequested();
}

} // namespace Vantrope
