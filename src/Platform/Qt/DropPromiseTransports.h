// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Models/Draggable/DraggableContext.h"

#include <optional>
#include <QByteArray>

class QMimeData;

namespace Vantrope {

// How the promises of one drop are fetched: X Direct Save where the program runs on X11, KDE Ark's
// extraction service wherever a session bus is.
class DropPromiseTransports final {
public:
    using Factory = decltype(DraggableContext::promiseTransportFactory);

    DropPromiseTransports() = delete;

    // For the drop being delivered with `dropData`. Direct save sources answer only during their drag,
    // so the factory saves the file at once, into the folder of the drop's `sequenceNumber`, and may
    // only be called while the drop event is being handled.
    static Factory forDrop(const QMimeData& dropData, std::optional<quint64> sequenceNumber);

    // The file name the source of the drag now over the program proposes by direct save; absent off X11
    // and when the source proposes none.
    static std::optional<QByteArray> directSaveName();
};

} // namespace Vantrope
