// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "SessionCloseFilter.h"

#include <optional>
#include <QPointF>

namespace Vantrope {

// Told when a drag becomes a request for a shelf, and when that drag is over.
class DragRecognizerDelegate {
public:
    virtual ~DragRecognizerDelegate() = default;

    // `location`: where the gesture was made, in points with a bottom-left origin.
    virtual void dragRecognizerDidBegin(std::optional<QPointF> location) = 0;
    // Comes 0.1 seconds after the release, so that a drop on the new shelf can land first.
    virtual void dragRecognizerDidEnd(SessionCloseFilter filter) = 0;
};

} // namespace Vantrope
