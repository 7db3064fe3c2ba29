// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionInboundDropView.h"

#include "DropPromiseTransports.h"

#include <QDragEnterEvent>
#include <QMimeData>

namespace Vantrope {

DragSessionInboundDropView::DragSessionInboundDropView(DragSessionViewDelegate& delegate, QWidget* parent)
    : QWidget(parent)
    , m_delegate(delegate)
{
    setAcceptDrops(true);
}

void DragSessionInboundDropView::acceptAsCopy(QDropEvent* event) const
{
    // The shelf never takes the originals away from their owner: it keeps a reference, so a copy or a
    // link is what happens. Only a source that offers neither gets its own proposal, a move, which for
    // text means the source drops its copy and the shelf's is the one left.
    const Qt::DropActions possible = event->possibleActions();
    event->setDropAction(possible.testFlag(Qt::CopyAction)   ? Qt::CopyAction
                         : possible.testFlag(Qt::LinkAction) ? Qt::LinkAction
                                                             : event->proposedAction());
    event->accept();
}

void DragSessionInboundDropView::dragEnterEvent(QDragEnterEvent* event)
{
    m_draggingEntered = false;
    const QMimeData* data = event->mimeData();
    if ((m_ownDragSource && event->source() == m_ownDragSource) ||
        (m_canDragHandler && !m_canDragHandler()) || !data || !m_delegate.shouldAcceptDrag(*data)) {
        event->ignore();
        return;
    }
    m_draggingEntered = true;
    acceptAsCopy(event);
    Q_EMIT willBeginDragging();
}

void DragSessionInboundDropView::dragMoveEvent(QDragMoveEvent* event)
{
    if (m_draggingEntered) {
        acceptAsCopy(event);
    } else {
        event->ignore();
    }
}

void DragSessionInboundDropView::dragLeaveEvent(QDragLeaveEvent*)
{
    if (!m_draggingEntered) {
        return;
    }
    m_draggingEntered = false;
    Q_EMIT exited();
    m_delegate.didExitDrag();
}

void DragSessionInboundDropView::dropEvent(QDropEvent* event)
{
    const QMimeData* data = event->mimeData();
    if (!m_draggingEntered || !data) {
        event->ignore();
        return;
    }
    m_draggingEntered = false;
    const QPointer<DragSessionInboundDropView> self(this);
    // Promised files are fetched while the drop is handled: direct save sources answer only then.
    const bool taken =
        m_delegate.didDrop({*data, DropPromiseTransports::directSaveName(), [data](quint64 sequenceNumber) {
                                return DropPromiseTransports::forDrop(*data, sequenceNumber);
                            }});
    if (!self) {
        return;
    }
    // A refused drop goes back to its source, which shows it did not land.
    if (taken) {
        acceptAsCopy(event);
    } else {
        event->ignore();
    }
}

} // namespace Vantrope
