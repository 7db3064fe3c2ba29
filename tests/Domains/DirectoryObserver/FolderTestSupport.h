#pragma once

#include "Domains/DirectoryObserver/DirectoryObserver.h"
#include "Libraries/Core/ManualClock.h"

#include <functional>
#include <optional>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTest>
#include <sys/xattr.h>

namespace Vantrope::Test {

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

} // namespace Vantrope::Test
