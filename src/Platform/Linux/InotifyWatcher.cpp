#include "InotifyWatcher.h"

#include "Libraries/Core/Logging.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <map>
#include <poll.h>
#include <QHash>
#include <QMutex>
#include <QThread>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace Vantrope {

QString InotifyWatcher::Error::description() const
{
    return QStringLiteral("Cannot watch %1: %2").arg(path, reason);
}

struct InotifyWatcher::Private {
    struct Subscriber {
        std::uint32_t events;
        Callback callback;
    };
    struct Descriptor {
        std::map<quint64, Subscriber> subscribers;
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
    std::uint32_t maskFor(const Descriptor& descriptor) const
    {
        std::uint32_t mask = 0;
        for (const auto& entry : descriptor.subscribers) {
            mask |= entry.second.events;
        }
        return mask;
    }
};

namespace {

class WatchHandle final : public InotifyWatcher::Watch {
public:
    WatchHandle(InotifyWatcher::Private* owner, int wd, quint64 token)
        : m_owner(owner)
        , m_wd(wd)
        , m_token(token)
    {}
    ~WatchHandle() override { m_owner->remove(m_wd, m_token); }

private:
    InotifyWatcher::Private* m_owner;
    int m_wd;
    quint64 m_token;
};

} // namespace

InotifyWatcher::InotifyWatcher()
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

InotifyWatcher::~InotifyWatcher()
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

InotifyWatcher& InotifyWatcher::shared()
{
    // Never destroyed: watches may be released during static destruction.
    static auto* watcher = new InotifyWatcher;
    return *watcher;
}

std::expected<std::unique_ptr<InotifyWatcher::Watch>, InotifyWatcher::Error>
InotifyWatcher::watch(const QString& path, std::uint32_t events, Callback callback)
{
    if (d->fd < 0) {
        return std::unexpected(Error{path, QStringLiteral("inotify is not available")});
    }
    QMutexLocker lock(&d->mutex);
    const QByteArray native = path.toLocal8Bit();
    // IN_MASK_ADD keeps what other subscribers of the same inode asked for.
    const int wd = ::inotify_add_watch(d->fd, native.constData(), events | IN_MASK_ADD);
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
    d->descriptors[wd].subscribers.emplace(token, Private::Subscriber{events, std::move(callback)});
    return std::make_unique<WatchHandle>(d.get(), wd, token);
}

void InotifyWatcher::Private::remove(int wd, quint64 token)
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

void InotifyWatcher::Private::run()
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

void InotifyWatcher::Private::dispatch(const inotify_event& event)
{
    const QString name = event.len > 0 ? QString::fromLocal8Bit(event.name) : QString();
    std::vector<Callback> callbacks;
    {
        QMutexLocker lock(&mutex);
        if (event.mask & IN_Q_OVERFLOW) {
            // Lost events could concern anyone: tell every subscriber.
            for (const auto& descriptor : std::as_const(descriptors)) {
                for (const auto& entry : descriptor.subscribers) {
                    callbacks.push_back(entry.second.callback);
                }
            }
        } else if (auto it = descriptors.find(event.wd); it != descriptors.end()) {
            for (const auto& entry : it->subscribers) {
                if ((event.mask & (entry.second.events | IN_IGNORED)) != 0) {
                    callbacks.push_back(entry.second.callback);
                }
            }
            if (event.mask & IN_IGNORED) {
                // The kernel dropped the watch; a later watch may reuse the number.
                descriptors.erase(it);
            }
        }
    }
    for (const Callback& callback : callbacks) {
        callback(event.mask, name);
    }
}

} // namespace Vantrope
