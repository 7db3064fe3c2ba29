// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableFileAccessTable.h"

namespace Vantrope {

DraggableFileAccessTable& DraggableFileAccessTable::shared()
{
    static DraggableFileAccessTable table;
    return table;
}

void DraggableFileAccessTable::retain(const QUrl& url, const QUrl& bookmarkUrl)
{
    std::lock_guard lock(m_mutex);
    if (++m_counts[url] == 1 && m_start) {
        m_start(bookmarkUrl);
    }
}

void DraggableFileAccessTable::release(const QUrl& url, const QUrl& bookmarkUrl)
{
    std::lock_guard lock(m_mutex);
    const auto entry = m_counts.find(url);
    if (entry == m_counts.end() || entry.value() <= 0) {
        return;
    }
    if (--entry.value() == 0) {
        m_counts.erase(entry);
        if (m_stop) {
            m_stop(bookmarkUrl);
        }
    }
}

int DraggableFileAccessTable::count(const QUrl& url) const
{
    std::lock_guard lock(m_mutex);
    return m_counts.value(url, 0);
}

void DraggableFileAccessTable::setScopeHooks(ScopeHook start, ScopeHook stop)
{
    std::lock_guard lock(m_mutex);
    m_start = std::move(start);
    m_stop = std::move(stop);
}

} // namespace Vantrope
