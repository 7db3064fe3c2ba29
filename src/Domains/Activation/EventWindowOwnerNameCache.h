// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragMonitor.h"

#include <functional>
#include <optional>
#include <QHash>
#include <QSet>
#include <QString>
#include <vector>

namespace Vantrope {

// Which application owns the window a drag began in. Drag events come by the hundred, so a window is
// listed once and then served from memory; the full listing runs only for a window never seen.
class EventWindowOwnerNameCache final {
public:
    using WindowListing = std::function<std::vector<DragMonitor::WindowEntry>()>;

    explicit EventWindowOwnerNameCache(WindowListing listing);

    std::optional<QString> ownerName(quint64 windowNumber);

    const QHash<quint64, QString>& ownerNameCache() const { return m_ownerNameCache; }
    const QHash<quint64, QString>& lastOwnerNameFetch() const { return m_lastOwnerNameFetch; }
    const QSet<quint64>& dockWindowNumbers() const { return m_dockWindowNumbers; }

private:
    void fetchAll();

    WindowListing m_listing;
    QHash<quint64, QString> m_ownerNameCache;
    QHash<quint64, QString> m_lastOwnerNameFetch;
    QSet<quint64> m_dockWindowNumbers;
    // Windows a listing could not name (the bare desktop, say): listing again for each of their drag
    // events would cost several requests per window every time.
    QSet<quint64> m_unnamedWindowNumbers;
};

} // namespace Vantrope
