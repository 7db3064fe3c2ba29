// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OutboundDrag.h"

#include "Domains/DragSession/DragSessionLogging.h"
#include "OutboundDragData.h"

#ifdef WITH_X11
#include "Platform/X11/X11DirectSaveSource.h"
#include "Platform/X11/X11TimestampGuard.h"
#endif

#include <chrono>
#include <memory>
#include <QDrag>
#include <QPointer>
#include <QTimer>

namespace Vantrope {

namespace {

// How long a target that answered "move" may take to fetch what it moves.
constexpr std::chrono::seconds dropOutcomeTimeout{15};

} // namespace

std::optional<Qt::DropAction> OutboundDrag::exec(QObject* source, const DraggableList& draggables,
                                                 const QPixmap& pixmap, bool copyOnly, QObject* context,
                                                 const Decided& decided)
{
    std::unique_ptr<OutboundMimeData> data = OutboundDragData::make(draggables);
    if (!data) {
        qCWarning(lcDragSession) << "Attempted outbound drag items but the factory returned an empty array.";
        return std::nullopt;
    }
    qCInfo(lcDragSession) << "About start drag session...";
    auto* drag = new QDrag(source);
    const QPointer<OutboundMimeData> offered = data.get();
    drag->setMimeData(data.release());
#ifdef WITH_X11
    if (X11TimestampGuard* guard = X11TimestampGuard::instance()) {
        guard->setDragData(drag->mimeData());
    }
    if (!offered->directSaveFileName().isEmpty()) {
        // The drag's window exists once the drag has begun, inside its own event loop.
        QTimer::singleShot(0, drag, [offered] {
            if (offered) {
                X11DirectSaveSource::announce(offered->directSaveFileName());
            }
        });
    }
#endif
    if (!pixmap.isNull()) {
        drag->setPixmap(pixmap);
        drag->setHotSpot(QPoint(int(pixmap.width() / pixmap.devicePixelRatio() / 2),
                                int(pixmap.height() / pixmap.devicePixelRatio() / 2)));
    }
    const Qt::DropActions actions =
        copyOnly ? Qt::DropActions(Qt::CopyAction) : Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    const QPointer<QObject> guard(context);
    // Runs its own event loop until the drop or the cancel.
    const Qt::DropAction action = drag->exec(actions, Qt::CopyAction);
    if (!guard || action == Qt::IgnoreAction) {
        return action;
    }
    // Anything but a copy took the files away from where the shelf knows them; a target that took only
    // text moved nothing away, whatever it answered.
    const auto done = std::make_shared<bool>(false);
    const auto decide = [guard, done, decided](bool moved) {
        if (guard && !*done) {
            *done = true;
            decided(moved);
        }
    };
    if (action == Qt::CopyAction || !offered || offered->filesTaken()) {
        decide(action != Qt::CopyAction);
        return action;
    }
    // The drag returns at the drop, before the target asked for anything. Qt lets go of the drag's data
    // when the target says it has finished (or gives up waiting); all it took is known by then.
    QObject::connect(offered, &OutboundMimeData::filesWereTaken, context, [decide] { decide(true); });
    QObject::connect(offered, &QObject::destroyed, context, [decide] { decide(false); });
    QTimer::singleShot(dropOutcomeTimeout, context, [decide] { decide(false); });
    return action;
}

} // namespace Vantrope
