// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// first_start_to_tray_ms: the same for the very first start, in an empty home, which writes the default
// preferences.
// startup_to_tray_ms: from starting the program to its tray icon docking in a tray host (median of 5
// starts with preferences already written, as every start but the first).
// idle_rss_mb: resident memory of the running agent with two shelves open, after it settled.
// idle_cpu_ms_per_min: CPU time of all the agent's threads while nothing happens, measured over 20 s
// and scaled to a minute.
// cli_list_ms: wall time of `vantrope list --json` against the running agent (median of 20).
// recent_menu_10000_items_ms: the same with one recent shelf of 10,000 items, each right after a command
// that changed the recent shelves (median of 10).
// bad_recent_50mb_start_ms: from starting the program over a 50 MB recent-shelves file of well-formed
// but unreadable records to its first answer on the command line; bad_recent_50mb_rss_mb: its resident
// memory 2 s later.

#include "support/BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <unistd.h>
#include <vector>

using namespace Vantrope;

namespace {

constexpr int starts = 5;
constexpr int listCalls = 20;
constexpr int idleSeconds = 20;

// All threads' time on a CPU, in nanoseconds, from the scheduler's own accounting.
double cpuNanoseconds(qint64 pid)
{
    double total = 0;
    const QString tasks = QStringLiteral("/proc/%1/task").arg(pid);
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks + QLatin1Char('/') + task + QStringLiteral("/schedstat"));
        if (file.open(QIODevice::ReadOnly)) {
            total += file.readAll().split(' ').value(0).toDouble();
        }
    }
    return total;
}

class AgentBench final {
public:
    AgentBench() { useHome(m_home.path()); }

    int run()
    {
        m_tray.start(QStringLiteral(TRAY_HOST_BINARY), {});
        if (!m_tray.waitForStarted() || !waitForTrayLine("ready")) {
            std::fprintf(stderr, "the tray host did not start\n");
            return 1;
        }
        // The first start writes the default preferences; it is reported apart from the everyday ones.
        QProcess agent;
        const double firstStart = start(agent);
        if (firstStart < 0 || !quit(agent)) {
            return 1;
        }

        std::vector<double> startups;
        for (int i = 0; i < starts; ++i) {
            const double elapsed = start(agent);
            if (elapsed < 0 || (i + 1 < starts && !quit(agent))) {
                return 1;
            }
            startups.push_back(elapsed);
        }

        for (const char* name : {"a.txt", "b.txt"}) {
            QFile file(m_home.filePath(QString::fromLatin1(name)));
            file.open(QIODevice::WriteOnly);
            file.write(name);
        }
        if (cli({QStringLiteral("add"), m_home.filePath(QStringLiteral("a.txt")),
                 m_home.filePath(QStringLiteral("b.txt"))}) < 0) {
            return 1;
        }
        QThread::sleep(2);
        const double rss = Bench::residentMegabytes(agent.processId());
        const double before = cpuNanoseconds(agent.processId());
        if (before <= 0) {
            std::fprintf(stderr, "no scheduler statistics in /proc, so no CPU figure\n");
            return 1;
        }
        QThread::sleep(idleSeconds);
        const double idleCpu = (cpuNanoseconds(agent.processId()) - before) / 1e6 * 60.0 / idleSeconds;

        std::vector<double> lists;
        for (int i = 0; i < listCalls; ++i) {
            const double elapsed = cli({QStringLiteral("list"), QStringLiteral("--json")});
            if (elapsed < 0) {
                return 1;
            }
            lists.push_back(elapsed);
        }
        quit(agent);

        const double bigShelfList = recentShelfOf10000Items(agent);
        const auto [badStart, badRss] = badRecentFile(agent);
        m_tray.kill();
        m_tray.waitForFinished();
        if (bigShelfList < 0 || badStart < 0) {
            return 1;
        }

        std::printf("first_start_to_tray_ms %.1f ms\n", firstStart);
        std::printf("startup_to_tray_ms %.1f ms\n", Bench::median(startups));
        std::printf("idle_rss_mb %.1f MB\n", rss);
        std::printf("idle_cpu_ms_per_min %.2f ms\n", idleCpu);
        std::printf("cli_list_ms %.1f ms\n", Bench::median(lists));
        std::printf("recent_menu_10000_items_ms %.1f ms\n", bigShelfList);
        std::printf("bad_recent_50mb_start_ms %.1f ms\n", badStart);
        std::printf("bad_recent_50mb_rss_mb %.1f MB\n", badRss);
        return 0;
    }

private:
    void useHome(const QString& home)
    {
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(QStringLiteral("HOME"), home);
        for (const char* name : {"CONFIG", "DATA", "CACHE"}) {
            m_environment.insert(QStringLiteral("XDG_%1_HOME").arg(QLatin1String(name)),
                                 home + QLatin1Char('/') + QString::fromLatin1(name).toLower());
        }
    }

    // Median `list` time with a recent shelf of 10,000 files, or -1.
    double recentShelfOf10000Items(QProcess& agent)
    {
        QTemporaryDir home;
        useHome(home.path());
        QStringList arguments{QStringLiteral("add")};
        for (int i = 0; i < 10000; ++i) {
            const QString path = home.filePath(QStringLiteral("item-%1.txt").arg(i));
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            arguments.append(path);
        }
        std::vector<double> lists;
        if (start(agent) < 0 || cli(arguments) < 0) {
            return -1;
        }
        QThread::sleep(3);
        if (cli({QStringLiteral("close-all")}) < 0) {
            return -1;
        }
        QThread::sleep(2);
        // Each change of the recent shelves rebuilds the tray menu; the next command waits for it.
        const QString small = home.filePath(QStringLiteral("small.txt"));
        QFile(small).open(QIODevice::WriteOnly);
        for (int i = 0; i < 5; ++i) {
            for (const QStringList& change :
                 {QStringList{QStringLiteral("add"), small}, {QStringLiteral("close-all")}}) {
                if (cli(change) < 0) {
                    return -1;
                }
                const double elapsed = cli({QStringLiteral("list"), QStringLiteral("--json")});
                if (elapsed < 0) {
                    return -1;
                }
                lists.push_back(elapsed);
            }
        }
        quit(agent);
        return Bench::median(lists);
    }

    // Start to first answer and resident megabytes over a 50 MB file of bad records; -1 on failure.
    std::pair<double, double> badRecentFile(QProcess& agent)
    {
        QTemporaryDir home;
        useHome(home.path());
        QDir().mkpath(home.filePath(QStringLiteral("data/vantrope")));
        QFile store(home.filePath(QStringLiteral("data/vantrope/.drag_sessions")));
        store.open(QIODevice::WriteOnly);
        const QByteArray record =
            R"({"identifier":"x","date":"2026-01-01T00:00:00Z","bookmarks":["file:///home/someone/a.txt"]})";
        store.write("[");
        for (qint64 written = 0; written < 50 * 1024 * 1024; written += record.size() + 1) {
            store.write(written == 0 ? record : "," + record);
        }
        store.write("]");
        store.close();
        QElapsedTimer timer;
        timer.start();
        if (start(agent) < 0 || cli({QStringLiteral("list")}) < 0) {
            return {-1, -1};
        }
        const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        QThread::sleep(2);
        const double rss = Bench::residentMegabytes(agent.processId());
        quit(agent);
        return {elapsed, rss};
    }

    bool waitForTrayLine(const QByteArray& prefix)
    {
        while (m_tray.waitForReadyRead(10000)) {
            m_trayOutput.append(m_tray.readAllStandardOutput());
            qsizetype end = 0;
            while ((end = m_trayOutput.indexOf('\n')) >= 0) {
                const QByteArray line = m_trayOutput.left(end);
                m_trayOutput.remove(0, end + 1);
                if (line.startsWith(prefix)) {
                    return true;
                }
            }
        }
        return false;
    }

    // Milliseconds until the tray icon docked, or -1.
    double start(QProcess& agent)
    {
        agent.setProcessEnvironment(m_environment);
        agent.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QElapsedTimer timer;
        timer.start();
        agent.start(QStringLiteral(VANTROPE_BINARY), {});
        if (!agent.waitForStarted() || !waitForTrayLine("docked")) {
            std::fprintf(stderr, "vantrope did not dock in the tray\n");
            return -1;
        }
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    bool quit(QProcess& agent)
    {
        if (cli({QStringLiteral("quit")}) < 0 || !agent.waitForFinished(10000)) {
            std::fprintf(stderr, "vantrope did not quit\n");
            return false;
        }
        return true;
    }

    double cli(const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        QElapsedTimer timer;
        timer.start();
        process.start(QStringLiteral(VANTROPE_BINARY), arguments);
        if (!process.waitForFinished(20000) || process.exitCode() != 0) {
            std::fprintf(stderr, "vantrope %s failed: %s\n", qPrintable(arguments.join(u' ')),
                         process.readAllStandardError().constData());
            return -1;
        }
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    QTemporaryDir m_home;
    QProcessEnvironment m_environment;
    QProcess m_tray;
    QByteArray m_trayOutput;
};

} // namespace

int main(int argc, char* argv[])
{
    if (const std::optional<int> exitCode =
            Bench::runOnOwnDisplay(argv, {"Xvfb", "openbox", "dbus-run-session"})) {
        return *exitCode;
    }
    QCoreApplication app(argc, argv);
    return AgentBench().run();
}
