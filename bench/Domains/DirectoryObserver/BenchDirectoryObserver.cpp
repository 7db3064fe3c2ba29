// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints what a watched folder costs, as "name value unit" lines: one listing pass over a large folder,
// and the passes and CPU time that a burst of new files takes.

#include "Domains/DirectoryObserver/FileSystemChangeObserver.h"
#include "Libraries/Core/ManualClock.h"
#include "Platform/Linux/InotifyDirectoryWatcher.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTimer>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <vector>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

bool touch(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
}

double cpuMilliseconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto ms = [](const timeval& t) { return double(t.tv_sec) * 1000.0 + double(t.tv_usec) / 1000.0; };
    return ms(usage.ru_utime) + ms(usage.ru_stime);
}

// The median time of one pass over a folder of `entries` files, each pass finding one new file.
std::optional<double> diffMilliseconds(const QString& folder, int entries, int repetitions)
{
    for (int i = 0; i < entries - 1; ++i) {
        if (!touch(folder + QStringLiteral("/entry-%1.dat").arg(i, 5, 10, QLatin1Char('0')))) {
            return std::nullopt;
        }
    }
    ManualClock clock;
    InotifyDirectoryWatcher watcher;
    FileSystemChangeObserver observer(QUrl::fromLocalFile(folder), 50, 400ms, clock, watcher);
    qsizetype reported = 0;
    observer.setOnAdded([&](const FileSystemChangeObserver::Items& items) { reported += items.size(); });
    if (!observer.start()) {
        return std::nullopt;
    }
    std::vector<double> samples;
    for (int i = 0; i < repetitions; ++i) {
        // Each new file replaces the previous one, so the folder keeps its size.
        if (i > 0) {
            QFile::remove(folder + QStringLiteral("/new-%1.dat").arg(i - 1));
        }
        touch(folder + QStringLiteral("/new-%1.dat").arg(i));
        const QDeadlineTimer deadline(5000);
        while (clock.pendingCount() == 0 && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
        const quint64 before = observer.passCount();
        const auto start = std::chrono::steady_clock::now();
        clock.advance(400ms);
        const auto elapsed = std::chrono::steady_clock::now() - start;
        if (observer.passCount() != before + 1) {
            return std::nullopt;
        }
        samples.push_back(std::chrono::duration<double, std::milli>(elapsed).count());
        // Late signals of this step must not start the next step's pass early.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        clock.advance(1s);
    }
    if (reported != repetitions) {
        std::fprintf(stderr, "expected %d new files, %lld were reported\n", repetitions, qlonglong(reported));
        return std::nullopt;
    }
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

struct Burst {
    quint64 passes = 0;
    double cpuMs = 0;
    double seconds = 0; // from the first file to the last, which the passes are measured against
};

// `files` new files written by another process in even chunks over `seconds`, watched in real time.
std::optional<Burst> burst(const QString& folder, int files, double seconds)
{
    const int chunks = 20;
    std::vector<std::string> names;
    names.reserve(size_t(files));
    for (int i = 0; i < files; ++i) {
        names.push_back(QFile::encodeName(folder + QStringLiteral("/burst-%1.dat").arg(i)).toStdString());
    }

    InotifyDirectoryWatcher watcher;
    FileSystemChangeObserver observer(QUrl::fromLocalFile(folder), 50, 400ms, Clock::system(), watcher);
    qsizetype reported = 0;
    observer.setOnAdded([&](const FileSystemChangeObserver::Items& items) { reported += items.size(); });
    if (!observer.start()) {
        return std::nullopt;
    }
    const quint64 baselinePasses = observer.passCount();
    const double cpuBefore = cpuMilliseconds();
    const auto started = std::chrono::steady_clock::now();
    std::optional<std::chrono::steady_clock::time_point> ended;

    const pid_t writer = ::fork();
    if (writer == 0) {
        const timespec pause{0, long(seconds / chunks * 1e9)};
        for (int i = 0; i < files; ++i) {
            const int fd = ::open(names[size_t(i)].c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (fd < 0 || ::write(fd, "x", 1) != 1) {
                ::_exit(1);
            }
            ::close(fd);
            if ((i + 1) % (files / chunks) == 0) {
                ::nanosleep(&pause, nullptr);
            }
        }
        ::_exit(0);
    }
    if (writer < 0) {
        return std::nullopt;
    }

    int status = -1;
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(50);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (status == -1 && ::waitpid(writer, &status, WNOHANG) == writer) {
            ended = std::chrono::steady_clock::now();
            // Room for the last throttled pass.
            QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        }
    });
    poll.start();
    loop.exec();

    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || reported == 0) {
        std::fprintf(stderr, "the burst went wrong: writer status %d, %lld reported\n", status,
                     qlonglong(reported));
        return std::nullopt;
    }
    return Burst{observer.passCount() - baselinePasses, cpuMilliseconds() - cpuBefore,
                 std::chrono::duration<double>(*ended - started).count()};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("vantrope.*.debug=false\nvantrope.*.info=false"));

    QTemporaryDir root;
    if (!root.isValid()) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    bool failed = false;

    const QString large = root.path() + QStringLiteral("/large");
    QDir().mkpath(large);
    if (const auto ms = diffMilliseconds(large, 10000, 30)) {
        std::printf("dir_diff_10000_ms %.2f ms\n", *ms);
    } else {
        failed = true;
    }

    const QString target = root.path() + QStringLiteral("/burst");
    QDir().mkpath(target);
    if (const auto result = burst(target, 5000, 2.0)) {
        std::printf("dir_burst_5000_passes %llu passes\n", static_cast<unsigned long long>(result->passes));
        std::printf("dir_burst_5000_cpu_ms %.1f ms\n", result->cpuMs);
        // The writer is slowed by the machine; the passes only mean something against this.
        std::printf("dir_burst_5000_seconds %.2f s\n", result->seconds);
    } else {
        failed = true;
    }
    std::fflush(stdout);
    return failed ? 1 : 0;
}
