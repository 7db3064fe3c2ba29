// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/DragSession/DragSessionView.h"

#include <functional>
#include <QPointer>
#include <QWidget>

class QDropEvent;

namespace Vantrope {

// The part of a shelf that drags from elsewhere land on. It follows a drag over the shelf and hands the
// drag and its drop to the shelf's delegate, which decides. Its children (the pile, the buttons) take no
// drops themselves, so a drop anywhere on the shelf ends here.
class DragSessionInboundDropView final : public QWidget {
    Q_OBJECT
public:
    explicit DragSessionInboundDropView(DragSessionViewDelegate& delegate, QWidget* parent = nullptr);

    // Asked when a drag enters; false turns it away before the delegate hears of it.
    void setCanDragHandler(std::function<bool()> handler) { m_canDragHandler = std::move(handler); }
    // Drags that start at this object are the shelf's own items going out: they are not taken back in.
    void setOwnDragSource(QObject* source) { m_ownDragSource = source; }

Q_SIGNALS:
    // A drag the shelf takes in is over it.
    void willBeginDragging();
    // That drag left without a drop.
    void exited();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void acceptAsCopy(QDropEvent* event) const;

    DragSessionViewDelegate& m_delegate;
    std::function<bool()> m_canDragHandler;
    QPointer<QObject> m_ownDragSource;
    bool m_draggingEntered = false;
};

} // namespace Vantrope
