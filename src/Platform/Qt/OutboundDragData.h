// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/Draggable.h"
#include "OutboundMimeData.h"

#include <memory>

namespace Vantrope {

// What a drag of shelf items offers: every item's URL in one "text/uri-list", a lone item's other
// types beside it, and the file-transfer portal's key where the portal runs. Texts alone are offered as
// text, and their file through X Direct Save.
class OutboundDragData final {
public:
    OutboundDragData() = delete;

    // Null when no item has anything to offer yet (promises still on their way).
    static std::unique_ptr<OutboundMimeData> make(const DraggableList& draggables, bool offerPortal = true);
};

} // namespace Vantrope
