// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionDropValidator.h"

#include "DragSessionLogging.h"
#include "Models/Draggable/DraggableFile.h"

#include <QSet>

namespace Vantrope {

std::optional<DragError> DragSessionDropValidator::validateDrop(const DraggableList& shelfItems,
                                                                const DraggableList& droppedItems)
{
    qCInfo(lcDragSession).nospace() << "Validating drop for " << droppedItems.size()
                                    << ", current drop items count: " << shelfItems.size();
    if (droppedItems.isEmpty()) {
        qCInfo(lcDragSession) << "Rejecting drag because we don't have any pairs at this point";
        return DragError::other();
    }

    const bool allEmptyFiles =
        std::all_of(droppedItems.cbegin(), droppedItems.cend(), [](const DraggablePtr& item) {
            const auto* file = dynamic_cast<const DraggableFile*>(item.get());
            return file && file->size() == 0;
        });
    if (allEmptyFiles) {
        return DragError::rejected(DragError::RejectionType::empty);
    }

    QSet<QString> held;
    held.reserve(shelfItems.size());
    for (const DraggablePtr& item : shelfItems) {
        held.insert(item->cacheKey());
    }
    for (const DraggablePtr& item : droppedItems) {
        if (held.contains(item->cacheKey())) {
            qCInfo(lcDragSession) << "Rejecting drag because we already contain one or more items";
            return DragError::rejected(DragError::RejectionType::existing);
        }
    }
    return std::nullopt;
}

} // namespace Vantrope
