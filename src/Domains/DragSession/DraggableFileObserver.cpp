// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DraggableFileObserver.h"

#include "DragSessionLogging.h"

namespace Vantrope {

DraggableFileObserver::DraggableFileObserver(const QUrl& url, const QString& identifier, FileWatcher& watcher)
    : m_url(url)
    , m_identifier(identifier)
    , m_watcher(watcher)
{}

void DraggableFileObserver::configure()
{
    const QString path = m_url.toLocalFile();
    // The callback may outlive this object for the duration of one event: it holds only a copy of the
    // handler, which the owner makes safe against its own end.
    auto handler = std::make_shared<std::function<void()>>(onChange);
    // A move and a deletion alike send the shelf to the bookmark, which tells them apart.
    auto watch = m_watcher.watch(path, [handler](FileWatcher::Change) {
        if (*handler) {
            (*handler)();
        }
    });
    if (!watch && watch.error().limitReached) {
        // Reporting a change here would make the shelf drop a file that is still there.
        qCWarning(lcDragSession).noquote() << "Not following" << path << "-" << watch.error().description();
        return;
    }
    if (!watch) {
        qCCritical(lcDragSession).noquote()
            << "Failed to open file descriptor" << watch.error().description();
        if (onChange) {
            onChange();
        }
        return;
    }
    m_watch = std::move(*watch);
}

void DraggableFileObserver::cancel()
{
    m_watch.reset();
}

} // namespace Vantrope
