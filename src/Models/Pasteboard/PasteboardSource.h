// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Pasteboard.h"

namespace Vantrope {

// A pasteboard that changes over time (the clipboard), read as snapshots.
class PasteboardSource {
public:
    virtual ~PasteboardSource() = default;
    // Grows by one on every change of the content.
    virtual int changeCount() const = 0;
    virtual Pasteboard pasteboard() const = 0;
};

} // namespace Vantrope
