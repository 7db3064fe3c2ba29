// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints how long writing and reading the recent shelves takes for 10 shelves of 1,000 files each,
// as "name value unit" lines: wall-clock medians, and the process CPU time beside them, which stays
// meaningful on a busy machine.

#include "Domains/DragSession/PersistentDragSessionStore.h"
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/ManualClock.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <vector>

using namespace Vantrope;

namespace {

constexpr int shelves = 10;
constexpr int itemsPerShelf = 1000;
constexpr int repetitions = 15;

struct Timing {
    double wall = 0;
    double cpu = 0;
};

double processCpuMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double median(std::vector<double> samples)
{
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

// The store works on its own threads, hence process rather than thread CPU time.
Timing measure(const std::function<void()>& work)
{
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int i = 0; i < repetitions; ++i) {
        const double cpuStart = processCpuMilliseconds();
        const auto start = std::chrono::steady_clock::now();
        work();
        wall.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        cpu.push_back(processCpuMilliseconds() - cpuStart);
    }
    return {median(wall), median(cpu)};
}

void report(const char* name, const Timing& timing)
{
    std::printf("%s_ms %.2f ms\n%s_cpu_ms %.2f ms\n", name, timing.wall, name, timing.cpu);
    std::fflush(stdout);
}

PersistentDragSessionPtr makeShelf(const QString& folder, int shelf)
{
    PersistentDragSession::Bookmarks bookmarks;
    QStringList order;
    QDir().mkpath(folder);
    for (int i = 0; i < itemsPerShelf; ++i) {
        const QString path = folder + QStringLiteral("/Scan %1.pdf").arg(i, 4, 10, QLatin1Char('0'));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            return nullptr;
        }
        const QUrl url = QUrl::fromLocalFile(path);
        const auto bookmark = FileBookmark::create(url);
        if (!bookmark) {
            return nullptr;
        }
        bookmarks.insert(url, *bookmark);
        order.append(url.toString(QUrl::FullyEncoded));
    }
    DragSessionLabel label;
    label.name = QStringLiteral("Shelf %1").arg(shelf);
    return std::make_shared<PersistentDragSession>(
        QStringLiteral("shelf-%1").arg(shelf),
        QDateTime(QDate(2026, 3, 1), QTime(8, 0), Qt::UTC).addSecs(shelf * 60), label, bookmarks, order);
}

} // namespace

int main(int argc, char** argv)
{
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toUtf8() + "/data");
    qputenv("XDG_CACHE_HOME", home.path().toUtf8() + "/cache");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false"));

    const QString path = home.filePath(QStringLiteral(".drag_sessions"));
    ManualClock clock;
    {
        PersistentDragSessionStore store(path, nullptr, clock);
        for (int shelf = 0; shelf < shelves; ++shelf) {
            const PersistentDragSessionPtr session =
                makeShelf(home.filePath(QStringLiteral("files/%1").arg(shelf)), shelf);
            if (!session) {
                std::fprintf(stderr, "could not make the files of shelf %d\n", shelf);
                return 1;
            }
            store.addSessionNow(session);
        }
        store.flush();
    }

    // A store fresh from the file has encoded nothing yet, so each of these writes every record.
    std::vector<std::unique_ptr<PersistentDragSessionStore>> stores;
    for (int i = 0; i < repetitions; ++i) {
        stores.push_back(std::make_unique<PersistentDragSessionStore>(path, nullptr, clock));
        stores.back()->sessions();
    }
    int next = 0;
    report("recent_save_10x1000", measure([&] { stores[next++]->flush(); }));
    // Later saves, as while a shelf stays open, encode only the records that changed.
    report("recent_resave_10x1000", measure([&] { stores.front()->flush(); }));
    stores.clear();

    // Until the first read returns; the stores are torn down outside the timing.
    QList<PersistentDragSessionPtr> sessions;
    const Timing load = measure([&] {
        stores.push_back(std::make_unique<PersistentDragSessionStore>(path, nullptr, clock));
        sessions = stores.back()->sessions();
    });
    stores.clear();
    qsizetype bookmarks = 0;
    for (const auto& session : std::as_const(sessions)) {
        bookmarks += session->bookmarkUrls().size();
    }
    if (bookmarks != shelves * itemsPerShelf) {
        std::fprintf(stderr, "loaded %lld bookmarks instead of %d\n", qlonglong(bookmarks),
                     shelves * itemsPerShelf);
        return 1;
    }
    report("recent_load_10x1000", load);
    std::printf("recent_file_10x1000_bytes %lld bytes\n", qlonglong(QFileInfo(path).size()));
    return 0;
}
