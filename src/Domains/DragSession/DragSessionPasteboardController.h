// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Pasteboard/PasteboardSource.h"

#include <optional>

namespace Vantrope {

// Reads shelf items from the clipboard, with a cache per clipboard change so that asking twice costs
// nothing, and a limit so that a huge clipboard is never read on a key press.
class DragSessionPasteboardController final {
public:
    static constexpr int itemLimit = 100;

    explicit DragSessionPasteboardController(const PasteboardSource& pasteboard,
                                             DraggableContext context = {});

    DraggableList draggables();

    // The shelf emptied the clipboard itself: until it changes again, there is nothing to take.
    void invalidate() { m_invalidationChangeCount = m_pasteboard.changeCount(); }
    void reset();
    std::optional<int> invalidationChangeCount() const { return m_invalidationChangeCount; }

    // The table shared by every controller of the process, by clipboard change count.
    static void clearSharedCache();

private:
    DraggableList read();

    const PasteboardSource& m_pasteboard;
    DraggableContext m_context;
    std::optional<int> m_invalidationChangeCount;
    std::optional<std::pair<DraggableList, int>> m_cache;
};

} // namespace Vantrope
