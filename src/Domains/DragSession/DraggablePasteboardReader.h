// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Pasteboard/Pasteboard.h"

#include <QList>

namespace Vantrope {

// Turns pasteboard items into shelf items: which kinds may be tried for a pasteboard, and in what order.
class DraggablePasteboardReader final {
public:
    enum class Kind { promise, weblocation, file, text, webImage };

    // The kinds to try, first match wins. A browser's image drag is only ever a web image; everything else
    // goes through the base list (promise, web location, file, text).
    static QList<Kind> kinds(const Pasteboard& pasteboard);
    static const QList<Kind>& baseKinds();

    // Each kind in order, each of its readable types in order, offered by the item: the first item built.
    static DraggablePtr readItem(const PasteboardItem& item, const QList<Kind>& kinds,
                                 const DraggableContext& context);

    // Every item of the pasteboard that some kind can read; the others are skipped.
    static DraggableList read(const Pasteboard& pasteboard, const DraggableContext& context);

    // The quick path for large drops: only file URLs are read.
    static DraggableList readFiles(const Pasteboard& pasteboard);
};

} // namespace Vantrope
