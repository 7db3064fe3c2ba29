#pragma once

#include "Domains/DirectoryObserver/DirectoryObserver.h"
#include "Libraries/Core/ManualClock.h"

#include <fcntl.h>
#include <functional>
#include <optional>
#include <linux/capability.h>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTest>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Vantrope::Test {

// Waits for the kernel's change signal and moves the clock past the throttle until a listing has run,
// then a little longer, so that the signals of other folders touched by the same step are served too.
// Listings are state-based, so a pass that a late signal of an earlier step starts serves as well.
inline bool runPass(ManualClock& clock, const std::function<quint64()>& passes)
{
    const quint64 before = passes();
    const QDeadlineTimer deadline(5000);
    std::optional<QDeadlineTimer> settled;
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (clock.pendingCount() > 0) {
            clock.advance(0.4);
        }
        if (!settled && passes() > before) {
            settled = QDeadlineTimer(30);
        }
        if (settled && settled->hasExpired()) {
            return true;
        }
        QTest::qSleep(2);
    }
    return false;
}

// Lets signals arrive and throttled passes run until `condition` holds.
inline bool runUntil(ManualClock& clock, const std::function<bool()>& condition)
{
    const QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (clock.pendingCount() > 0) {
            clock.advance(0.4);
        }
        QCoreApplication::sendPostedEvents();
        if (condition()) {
            return true;
        }
        QTest::qSleep(2);
    }
    return false;
}

// Listings run by the change observers now in a watched folder's tree; it drops when a subtree goes.
inline quint64 treePasses(const DirectoryObserver& observer)
{
    const SubdirectoryObserver& root = observer.subdirectoryObserver();
    quint64 passes = root.changeObserver().passCount();
    const QList<DirectoryChangeResponder*> descendants = root.descendants();
    for (DirectoryChangeResponder* responder : descendants) {
        passes += static_cast<SubdirectoryObserver*>(responder)->changeObserver().passCount();
    }
    return passes;
}

// Marks a file the way curl and wget mark a download. False where the file system keeps no user
// attributes.
inline bool markAsDownload(const QString& path)
{
    const QByteArray origin("https://downloads.example.org/file");
    return ::setxattr(QFile::encodeName(path).constData(), "user.xdg.origin.url", origin.constData(),
                      size_t(origin.size()), 0) == 0;
}

// Root reads any folder whatever its mode; without the override capabilities this thread sees what a
// user sees.
class AsOrdinaryUser final {
public:
    AsOrdinaryUser()
    {
        if (::geteuid() == 0 && ::syscall(SYS_capget, &m_header, m_saved) == 0) {
            __user_cap_data_struct reduced[2] = {m_saved[0], m_saved[1]};
            reduced[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
            m_dropped = ::syscall(SYS_capset, &m_header, reduced) == 0;
        }
    }
    ~AsOrdinaryUser()
    {
        if (m_dropped) {
            ::syscall(SYS_capset, &m_header, m_saved);
        }
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

    static bool canList(const QString& folder)
    {
        const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
        return fd >= 0 && ::close(fd) == 0;
    }

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_saved[2]{};
    bool m_dropped = false;
};

} // namespace Vantrope::Test
