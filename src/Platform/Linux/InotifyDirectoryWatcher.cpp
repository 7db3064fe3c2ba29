// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "InotifyDirectoryWatcher.h"

#include "Libraries/Core/Logging.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <QFile>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <sys/inotify.h>
#include <unistd.h>

namespace Vantrope {

namespace {

// Entry changes of the directory, and the directory itself going away.
constexpr uint32_t watchMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                               IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

// Long enough to gather a burst, short beside the throttle of any user.
constexpr std::chrono::milliseconds batchDelay{20};

QString errorText(int error)
{
    if (error == ENOSPC) {
        return QStringLiteral("the limit of inotify watches (fs.inotify.max_user_watches) is reached");
    }
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

class InotifyDirectoryWatcher::Subscription final : public DirectoryWatcher::Watch {
public:
    Subscription(InotifyDirectoryWatcher* watcher, int descriptor, quint64 id)
        : m_watcher(watcher)
        , m_descriptor(descriptor)
        , m_id(id)
    {}
    ~Subscription() override
    {
        if (m_watcher) {
            m_watcher->unsubscribe(m_descriptor, m_id);
        }
    }

private:
    QPointer<InotifyDirectoryWatcher> m_watcher;
    int m_descriptor;
    quint64 m_id;
};

InotifyDirectoryWatcher::InotifyDirectoryWatcher(QObject* parent)
    : QObject(parent)
{
    m_fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_fd < 0) {
        m_initError = errorText(errno);
        qCWarning(lcCore).noquote() << "Cannot watch folders for changes:" << m_initError;
        return;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        QTimer::singleShot(batchDelay, this, &InotifyDirectoryWatcher::readEvents);
    });
}

InotifyDirectoryWatcher::~InotifyDirectoryWatcher()
{
    delete m_notifier;
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}

std::expected<std::unique_ptr<DirectoryWatcher::Watch>, DirectoryWatcher::Error>
InotifyDirectoryWatcher::watch(const QString& directoryPath, Signal onChange)
{
    if (m_fd < 0) {
        return std::unexpected(Error{directoryPath, m_initError});
    }
    const int descriptor = ::inotify_add_watch(m_fd, QFile::encodeName(directoryPath).constData(), watchMask);
    if (descriptor < 0) {
        return std::unexpected(Error{directoryPath, errorText(errno)});
    }
    const quint64 id = m_nextId++;
    m_subscribers[descriptor].push_back(Subscriber{id, std::move(onChange)});
    return std::make_unique<Subscription>(this, descriptor, id);
}

void InotifyDirectoryWatcher::unsubscribe(int descriptor, quint64 id)
{
    const auto found = m_subscribers.find(descriptor);
    // Absent when the kernel already dropped the watch with its directory.
    if (found == m_subscribers.end()) {
        return;
    }
    std::erase_if(found->second, [id](const Subscriber& subscriber) { return subscriber.id == id; });
    if (found->second.empty()) {
        ::inotify_rm_watch(m_fd, descriptor);
        m_subscribers.erase(found);
    }
}

void InotifyDirectoryWatcher::readEvents()
{
    std::vector<int> changed;
    std::vector<int> ignored;
    bool overflowed = false;
    alignas(inotify_event) char buffer[64 * 1024];
    while (true) {
        const ssize_t length = ::read(m_fd, buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length <= 0) {
            break;
        }
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
            offset += ssize_t(sizeof(inotify_event) + event->len);
            if (event->mask & IN_Q_OVERFLOW) {
                overflowed = true;
            } else if (event->mask & IN_IGNORED) {
                ignored.push_back(event->wd);
            } else if (std::find(changed.begin(), changed.end(), event->wd) == changed.end()) {
                changed.push_back(event->wd);
            }
        }
    }
    m_notifier->setEnabled(true);

    if (overflowed) {
        // Events were lost; only a listing by everyone catches up.
        qCWarning(lcCore) << "The folder change queue overflowed; every watched folder is looked at again";
        changed.clear();
        for (const auto& [descriptor, subscribers] : m_subscribers) {
            changed.push_back(descriptor);
        }
    }
    signalSubscribers(changed);
    // After the signal, so that the users of a deleted directory hear of it. The descriptor may later
    // name another directory.
    for (int descriptor : ignored) {
        m_subscribers.erase(descriptor);
    }
}

void InotifyDirectoryWatcher::signalSubscribers(const std::vector<int>& descriptors)
{
    std::vector<std::pair<int, quint64>> targets;
    for (int descriptor : descriptors) {
        const auto found = m_subscribers.find(descriptor);
        if (found == m_subscribers.end()) {
            continue;
        }
        for (const Subscriber& subscriber : found->second) {
            targets.emplace_back(descriptor, subscriber.id);
        }
    }
    // A signal may end watches, its own included, so each is looked up again before it runs.
    for (const auto& [descriptor, id] : targets) {
        const auto found = m_subscribers.find(descriptor);
        if (found == m_subscribers.end()) {
            continue;
        }
        const auto subscriber = std::find_if(found->second.begin(), found->second.end(),
                                             [id = id](const Subscriber& s) { return s.id == id; });
        if (subscriber != found->second.end()) {
            const Signal signal = subscriber->signal;
            signal();
        }
    }
}

} // namespace Vantrope
