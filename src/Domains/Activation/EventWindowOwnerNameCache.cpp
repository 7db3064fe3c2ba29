// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "EventWindowOwnerNameCache.h"

namespace Vantrope {

EventWindowOwnerNameCache::EventWindowOwnerNameCache(WindowListing listing)
    : m_listing(std::move(listing))
{}

std::optional<QString> EventWindowOwnerNameCache::ownerName(quint64 windowNumber)
{
    if (const auto cached = m_ownerNameCache.constFind(windowNumber); cached != m_ownerNameCache.cend()) {
        return *cached;
    }
    auto fetched = m_lastOwnerNameFetch.constFind(windowNumber);
    if (fetched == m_lastOwnerNameFetch.cend()) {
        if (m_unnamedWindowNumbers.contains(windowNumber)) {
            return std::nullopt;
        }
        fetchAll();
        fetched = m_lastOwnerNameFetch.constFind(windowNumber);
        if (fetched == m_lastOwnerNameFetch.cend()) {
            m_unnamedWindowNumbers.insert(windowNumber);
            return std::nullopt;
        }
    }
    const QString name = *fetched;
    m_ownerNameCache.insert(windowNumber, name);
    return name;
}

void EventWindowOwnerNameCache::fetchAll()
{
    QHash<quint64, QString> fetch;
    for (const DragMonitor::WindowEntry& entry : m_listing()) {
        if (entry.windowNumber == 0 || entry.ownerName.isEmpty()) {
            continue;
        }
        fetch.insert(entry.windowNumber, entry.ownerName);
        if (entry.isDock) {
            m_dockWindowNumbers.insert(entry.windowNumber);
        }
    }
    m_lastOwnerNameFetch = std::move(fetch);
}

} // namespace Vantrope
