#pragma once

#include "Domains/DirectoryObserver/DirectoryObserver.h"
#include "Libraries/Core/ManualClock.h"

#include <fcntl.h>
#include <functional>
#include <linux/capability.h>
#include <optional>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTest>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace Vantrope::Test {

constexpr QFileDevice::Permissions ownerAll =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;

// Lets signals arrive and moves the clock past the throttle until `condition` holds, then for `settle`
// milliseconds more, so that the signals of other folders touched by the same step are served too.
inline bool runUntil(ManualClock& clock, const std::function<bool()>& condition, int settle = 0)
{
    const QDeadlineTimer deadline(5000);
    std::optional<QDeadlineTimer> settled;
    while (!deadline.hasExpired() && !(settled && settled->hasExpired())) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (clock.pendingCount() > 0) {
            clock.advance(0.4);
        }
        QCoreApplication::sendPostedEvents();
        if (!settled && condition()) {
            settled = QDeadlineTimer(settle);
        }
        QTest::qSleep(2);
    }
    return settled.has_value();
}

// Runs until a listing has run. Listings are state-based, so one that a late signal of an earlier step
// starts serves as well.
inline bool runPass(ManualClock& clock, const std::function<quint64()>& passes)
{
    const quint64 before = passes();
    return runUntil(
        clock, [&] { return passes() > before; }, 30);
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
