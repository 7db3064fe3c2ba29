// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Activation/DragMonitor.h"

namespace Vantrope {

// Stands in where no backend can see other applications' drags: no events ever come, and the reason
// is there for the settings to show.
class NullDragMonitor final : public DragMonitor {
public:
    explicit NullDragMonitor(QString reason);

    bool isAvailable() const override { return false; }
    QString unavailableReason() const override { return m_reason; }
    QPointF mouseLocation() override { return {}; }
    qint64 dragPasteboardChangeCount() override { return 0; }
    std::vector<WindowEntry> windowList() override { return {}; }

private:
    QString m_reason;
};

} // namespace Vantrope
