// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "InotifyFileWatcher.h"

#include "Libraries/Core/Logging.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <map>
#include <optional>
#include <poll.h>
#include <QHash>
#include <QMutex>
#include <QThread>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Vantrope {

namespace {

// The file itself going away or moving, and IN_ATTRIB for a change of link count: an unlink.
constexpr std::uint32_t watchMask = IN_MOVE_SELF | IN_DELETE_SELF | IN_ATTRIB;

// inotify reports an unlink as a change of attributes while anyone keeps the file open; only a link
// count of zero makes it a deletion, not a chmod or touch.
bool isUnlinked(const QString& path)
{
    struct stat info = {};
    return ::stat(path.toLocal8Bit().constData(), &info) != 0 || info.st_nlink == 0;
}

std::optional<FileWatcher::Change> changeOf(std::uint32_t mask, const QString& path)
{
    if (mask & IN_MOVE_SELF) {
        return FileWatcher::Change::moved;
    }
    if ((mask & IN_DELETE_SELF) || ((mask & IN_ATTRIB) && isUnlinked(path))) {
        return FileWatcher::Change::deleted;
    }
    return std::nullopt;
}

} // namespace

struct InotifyFileWatcher::Private {
    struct Subscriber {
        QString path;
        Callback callback;
        // An unlink arrives as a change of link count and again when the inode is freed. Only the
        // reading thread touches it.
        bool deletionReported = false;
    };
    struct Descriptor {
        std::map<quint64, std::shared_ptr<Subscriber>> subscribers;
    };

    int fd = -1;
    int wakeFd = -1;
    std::atomic<bool> stopping{false};
    QMutex mutex;
    QHash<int, Descriptor> descriptors;
    quint64 nextToken = 1;
    std::unique_ptr<QThread> thread;

    void run();
    void dispatch(const inotify_event& event);
    void remove(int wd, quint64 token);
};

namespace {

class WatchHandle final : public FileWatcher::Watch {
public:
    WatchHandle(InotifyFileWatcher::Private* owner, int wd, quint64 token)
        : m_owner(owner)
        , m_wd(wd)
        , m_token(token)
    {}
    ~WatchHandle() override { m_owner->remove(m_wd, m_token); }

private:
    InotifyFileWatcher::Private* m_owner;
    int m_wd;
    quint64 m_token;
};

} // namespace

InotifyFileWatcher::InotifyFileWatcher()
    : d(std::make_unique<Private>())
{
    d->fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    d->wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (d->fd < 0) {
        qCWarning(lcCore) << "inotify is not available:" << std::strerror(errno);
        return;
    }
    d->thread.reset(QThread::create([p = d.get()] { p->run(); }));
    d->thread->setObjectName(QStringLiteral("DraggableFileObserver"));
    d->thread->start();
}

InotifyFileWatcher::~InotifyFileWatcher()
{
    d->stopping = true;
    if (d->wakeFd >= 0) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(d->wakeFd, &one, sizeof one);
    }
    if (d->thread) {
        d->thread->wait();
    }
    if (d->fd >= 0) {
        ::close(d->fd);
    }
    if (d->wakeFd >= 0) {
        ::close(d->wakeFd);
    }
}

InotifyFileWatcher& InotifyFileWatcher::shared()
{
    // Never destroyed: watches may be released during static destruction.
    static auto* watcher = new InotifyFileWatcher;
    return *watcher;
}

std::expected<std::unique_ptr<FileWatcher::Watch>, FileWatcher::Error>
InotifyFileWatcher::watch(const QString& path, Callback callback)
{
    if (d->fd < 0) {
        return std::unexpected(Error{path, QStringLiteral("inotify is not available")});
    }
    QMutexLocker lock(&d->mutex);
    const QByteArray native = path.toLocal8Bit();
    // IN_MASK_ADD keeps what other subscribers of the same inode asked for.
    const int wd = ::inotify_add_watch(d->fd, native.constData(), watchMask | IN_MASK_ADD);
    if (wd < 0) {
        const int error = errno;
        QString reason = QString::fromLocal8Bit(std::strerror(error));
        const bool limitReached = error == ENOSPC || error == ENOMEM;
        if (error == ENOSPC) {
            reason += QStringLiteral(" (the limit fs.inotify.max_user_watches is reached)");
        }
        return std::unexpected(Error{path, reason, limitReached});
    }
    const quint64 token = d->nextToken++;
    d->descriptors[wd].subscribers.emplace(token,
                                           std::make_shared<Private::Subscriber>(path, std::move(callback)));
    return std::make_unique<WatchHandle>(d.get(), wd, token);
}

void InotifyFileWatcher::Private::remove(int wd, quint64 token)
{
    QMutexLocker lock(&mutex);
    auto it = descriptors.find(wd);
    if (it == descriptors.end() || it->subscribers.erase(token) == 0) {
        return;
    }
    if (it->subscribers.empty()) {
        descriptors.erase(it);
        ::inotify_rm_watch(fd, wd);
    }
}

void InotifyFileWatcher::Private::run()
{
    alignas(inotify_event) char buffer[64 * 1024];
    pollfd fds[2] = {{fd, POLLIN, 0}, {wakeFd, POLLIN, 0}};
    while (!stopping) {
        if (::poll(fds, 2, -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            qCWarning(lcCore) << "Waiting for file events failed:" << std::strerror(errno);
            return;
        }
        if (stopping) {
            return;
        }
        for (;;) {
            const ssize_t length = ::read(fd, buffer, sizeof buffer);
            if (length <= 0) {
                break;
            }
            for (ssize_t offset = 0; offset < length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
                dispatch(*event);
                offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
    }
}

void InotifyFileWatcher::Private::dispatch(const inotify_event& event)
{
    std::vector<std::shared_ptr<Subscriber>> targets;
    {
        QMutexLocker lock(&mutex);
        if (auto it = descriptors.find(event.wd); it != descriptors.end()) {
            for (const auto& entry : it->subscribers) {
                targets.push_back(entry.second);
            }
            if (event.mask & IN_IGNORED) {
                // The kernel dropped the watch; a later watch may reuse the number.
                descriptors.erase(it);
            }
        }
    }
    // Outside the lock: a callback may end its own watch.
    for (const std::shared_ptr<Subscriber>& subscriber : targets) {
        const auto change = changeOf(event.mask, subscriber->path);
        if (!change) {
            continue;
        }
        if (*change == Change::deleted) {
            if (subscriber->deletionReported) {
                continue;
            }
            subscriber->deletionReported = true;
        }
        subscriber->callback(*change);
    }
}

} // namespace Vantrope
