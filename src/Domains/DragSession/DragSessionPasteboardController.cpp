// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionPasteboardController.h"

#include "DraggablePasteboardReader.h"
#include "Libraries/Core/ThreadSafe.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"

#include <QFileInfo>
#include <QHash>

namespace Vantrope {

namespace {

ThreadSafe<QHash<int, DraggableList>>& sharedTable()
{
    static ThreadSafe<QHash<int, DraggableList>> table;
    return table;
}

bool allFilesExist(const DraggableList& draggables)
{
    return std::all_of(draggables.cbegin(), draggables.cend(), [](const DraggablePtr& item) {
        const auto* file = dynamic_cast<const DraggableFile*>(item.get());
        return !file || (file->url() && QFileInfo::exists(file->url()->toLocalFile()));
    });
}

} // namespace

DragSessionPasteboardController::DragSessionPasteboardController(const PasteboardSource& pasteboard,
                                                                 DraggableContext context)
    : m_pasteboard(pasteboard)
    , m_context(std::move(context))
{}

void DragSessionPasteboardController::reset()
{
    m_invalidationChangeCount.reset();
    m_cache.reset();
}

void DragSessionPasteboardController::clearSharedCache()
{
    sharedTable().setValue({});
}

DraggableList DragSessionPasteboardController::draggables()
{
    const int changeCount = m_pasteboard.changeCount();
    if (m_invalidationChangeCount == changeCount) {
        return {};
    }
    if (m_cache && m_cache->second == changeCount && allFilesExist(m_cache->first)) {
        return m_cache->first;
    }
    DraggableList fresh = read();
    if (!allFilesExist(fresh)) {
        m_cache.reset();
        return {};
    }
    m_cache = std::make_pair(fresh, changeCount);
    return fresh;
}

DraggableList DragSessionPasteboardController::read()
{
    const Pasteboard pasteboard = m_pasteboard.pasteboard();
    const QList<PasteboardItem>& items = pasteboard.items();

    // A single promise is taken as it stands.
    if (items.size() == 1) {
        if (auto promise = DraggablePasteboardReader::readItem(
                items.first(), {DraggablePasteboardReader::Kind::promise}, m_context)) {
            return {promise};
        }
    }

    const int changeCount = pasteboard.changeCount();
    if (auto hit = sharedTable().mutate([changeCount](auto& table) { return table.value(changeCount); });
        !hit.isEmpty()) {
        return hit;
    }
    if (items.size() >= itemLimit) {
        return {};
    }
    DraggableList result = DraggablePasteboardReader::read(pasteboard, m_context);
    if (!result.isEmpty()) {
        sharedTable().mutate([&](auto& table) {
            table.insert(changeCount, result);
            // Only recent clipboard contents are worth keeping.
            while (table.size() > 8) {
                table.remove(*std::min_element(table.keyBegin(), table.keyEnd()));
            }
        });
    }
    return result;
}

} // namespace Vantrope
