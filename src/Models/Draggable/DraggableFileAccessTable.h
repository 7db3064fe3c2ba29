// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <functional>
#include <mutex>
#include <QHash>
#include <QUrl>

namespace Vantrope {

// How many live file items rely on the access opened for a file restored from a bookmark. Two shelves
// can hold the same file, so access is counted per URL rather than paired per item. Items end on
// whichever thread drops them last, hence the lock.
class DraggableFileAccessTable final {
public:
    using ScopeHook = std::function<void(const QUrl& bookmarkUrl)>;

    static DraggableFileAccessTable& shared();

    // One more holder of `url`; the first one opens the scope of `bookmarkUrl`.
    void retain(const QUrl& url, const QUrl& bookmarkUrl);
    // One holder less; the last one closes the scope. Without an entry nothing happens.
    void release(const QUrl& url, const QUrl& bookmarkUrl);
    int count(const QUrl& url) const;

    // Linux grants a process no per-file access to open or close, so by default these do nothing.
    // The hooks mark where that would happen and let tests watch it; they run under the table's lock
    // and must not call back into it.
    void setScopeHooks(ScopeHook start, ScopeHook stop);

private:
    mutable std::mutex m_mutex;
    QHash<QUrl, int> m_counts;
    ScopeHook m_start;
    ScopeHook m_stop;
};

} // namespace Vantrope
