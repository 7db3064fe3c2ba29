// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QListView>

namespace Vantrope {

// The item list's view. A drag of the selection is handed to the panel, which runs the shelf's own drag
// out instead of Qt's item-view drag.
class DragSessionOutlineListView final : public QListView {
    Q_OBJECT
public:
    explicit DragSessionOutlineListView(QWidget* parent = nullptr);

Q_SIGNALS:
    void dragRequested();

protected:
    void startDrag(Qt::DropActions supportedActions) override;
};

} // namespace Vantrope
