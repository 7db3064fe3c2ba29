#include "DraggableFileObserver.h"

#include "DragSessionLogging.h"

#include <atomic>
#include <sys/stat.h>

namespace Vantrope {

namespace {

// inotify reports an unlink as a change of attributes while anyone keeps the file open; only a link
// count of zero makes it a deletion, not a chmod or touch.
bool isUnlinked(const QString& path)
{
    struct stat info = {};
    return ::stat(path.toLocal8Bit().constData(), &info) != 0 || info.st_nlink == 0;
}

} // namespace

DraggableFileObserver::DraggableFileObserver(const QUrl& url, const QString& identifier)
    : m_url(url)
    , m_identifier(identifier)
{}

void DraggableFileObserver::configure()
{
    const QString path = m_url.toLocalFile();
    // The callback may outlive this object for the duration of one event: it holds only a copy of the
    // handler, which the owner makes safe against its own end.
    auto handler = std::make_shared<std::function<void()>>(onChange);
    // An unlink arrives as a change of link count and again when the inode is freed: report it once.
    auto goneReported = std::make_shared<std::atomic<bool>>(false);
    auto watch = InotifyWatcher::shared().watch(
        path, InotifyWatcher::movedSelf | InotifyWatcher::deletedSelf | InotifyWatcher::attributes,
        [handler, goneReported, path](std::uint32_t mask, const QString&) {
            const bool gone = (mask & InotifyWatcher::deletedSelf) != 0 ||
                              ((mask & InotifyWatcher::attributes) != 0 && isUnlinked(path));
            const bool moved = (mask & InotifyWatcher::movedSelf) != 0;
            if (gone && goneReported->exchange(true)) {
                return;
            }
            if ((gone || moved) && *handler) {
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
