// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints how long archiving a 200-file, 100 MB tree takes with our Zip and with Info-ZIP's zip on the
// same tree in the same run, as "name value unit" lines.

#include "Libraries/FileOperations/Zip.h"
#include "support/BenchSupport.h"

#include <chrono>
#include <cstdio>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <sys/resource.h>
#include <vector>

using Vantrope::Zip;

namespace {

constexpr int fileCount = 200;
constexpr qint64 totalBytes = 100 * 1000 * 1000;
constexpr int repetitions = 3;

// Words drawn at random compress about as well as prose does, unlike one line repeated.
QByteArray text(QRandomGenerator& random, qint64 size)
{
    static const char* const words[] = {"shelf",   "drag",   "file",   "the",      "of",     "and",
                                        "archive", "window", "folder", "compress", "upload", "item",
                                        "a",       "to",     "in",     "photo",    "report", "2024",
                                        "draft",   "final",  "notes",  "meeting",  "with",   "for"};
    QByteArray data;
    data.reserve(size + 16);
    while (data.size() < size) {
        data += words[random.bounded(int(std::size(words)))];
        data += random.bounded(12) == 0 ? '\n' : ' ';
    }
    data.truncate(size);
    return data;
}

QByteArray noise(QRandomGenerator& random, qint64 size)
{
    QByteArray data(size, Qt::Uninitialized);
    random.fillRange(reinterpret_cast<quint32*>(data.data()), size / 4);
    return data;
}

// Sizes from a tenth to nearly twice the average, scaled to the total; text, noise and both mixed.
bool makeTree(const QString& root)
{
    QRandomGenerator random(42);
    std::vector<qint64> sizes(fileCount);
    qint64 sum = 0;
    for (qint64& size : sizes) {
        size = 50 + random.bounded(900);
        sum += size;
    }
    qint64 written = 0;
    for (int index = 0; index < fileCount; ++index) {
        const qint64 size = index == fileCount - 1 ? totalBytes - written : sizes[index] * totalBytes / sum;
        written += size;
        const QString folder = root + QStringLiteral("/Project/part %1/sub").arg(index % 10);
        if (!QDir().mkpath(folder)) {
            return false;
        }
        QFile file(folder + QStringLiteral("/file-%1.%2")
                                .arg(index)
                                .arg(index % 3 == 1 ? QStringLiteral("bin") : QStringLiteral("txt")));
        if (!file.open(QIODevice::WriteOnly)) {
            return false;
        }
        // A megabyte at a time keeps this process small, so its peak memory is the archiver's.
        for (qint64 done = 0; done < size;) {
            const qint64 piece = std::min<qint64>(size - done, 1 << 20);
            const QByteArray data = index % 3 == 0 ? text(random, piece)
                                    : index % 3 == 1
                                        ? noise(random, piece)
                                        : (done == 0 ? text(random, piece) : noise(random, piece));
            if (file.write(data) != piece) {
                return false;
            }
            done += piece;
        }
    }
    return QDir().mkpath(root + QStringLiteral("/Project/empty"));
}

double peakResidentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
        }
    }
    return -1;
}

double cpuSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void readAll(const QString& root)
{
    for (const QFileInfo& info : QDir(root).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (info.isDir()) {
            readAll(info.filePath());
        } else if (QFile file(info.filePath()); file.open(QIODevice::ReadOnly)) {
            while (!file.read(1 << 20).isEmpty()) {
            }
        }
    }
}

} // namespace

int main()
{
    QLoggingCategory::setFilterRules(QStringLiteral("vantrope.*.debug=false"));
    QTemporaryDir root;
    if (!root.isValid() || !makeTree(root.path() + QStringLiteral("/tree"))) {
        std::fprintf(stderr, "could not make the tree\n");
        return 1;
    }
    readAll(root.path() + QStringLiteral("/tree")); // both archivers start from a warm cache
    const QString tree = root.path() + QStringLiteral("/tree/Project");
    const QString ours = root.path() + QStringLiteral("/ours.zip");
    const QString theirs = root.path() + QStringLiteral("/theirs.zip");
    const bool haveZip = !QStandardPaths::findExecutable(QStringLiteral("zip")).isEmpty();
    if (!haveZip) {
        std::fprintf(stderr, "zip is missing (scripts/deps.sh bench installs it); timing ours alone\n");
    }

    double ourCpu = 0;
    std::vector<double> ourTimes;
    std::vector<double> theirTimes;
    qint64 ourSize = 0;
    qint64 theirSize = 0;
    for (int run = 0; run < repetitions; ++run) {
        QFile::remove(ours);
        const double cpuStart = cpuSeconds(RUSAGE_SELF);
        const auto start = std::chrono::steady_clock::now();
        const auto archive = Zip::zipFiles({tree}, ours, Zip::Options{});
        ourTimes.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        ourCpu += cpuSeconds(RUSAGE_SELF) - cpuStart;
        if (!archive) {
            std::fprintf(stderr, "%s\n", qPrintable(archive.error().description()));
            return 1;
        }
        ourSize = QFileInfo(ours).size();

        if (haveZip) {
            QFile::remove(theirs);
            QProcess zip;
            zip.setWorkingDirectory(root.path() + QStringLiteral("/tree"));
            const auto zipStart = std::chrono::steady_clock::now();
            zip.start(QStringLiteral("zip"), {QStringLiteral("-r"), QStringLiteral("-6"),
                                              QStringLiteral("-q"), theirs, QStringLiteral("Project")});
            if (!zip.waitForFinished(600000) || zip.exitCode() != 0) {
                std::fprintf(stderr, "zip failed: %s\n", zip.readAllStandardError().constData());
                return 1;
            }
            theirTimes.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - zipStart)
                    .count());
            theirSize = QFileInfo(theirs).size();
        }
    }

    // Processor time tells the cost apart from what other work on the machine takes from the wall clock.
    std::fprintf(stderr, "processor time per run: ours %.2f s, zip %.2f s\n", ourCpu / repetitions,
                 cpuSeconds(RUSAGE_CHILDREN) / repetitions);
    const double ourMedian = Vantrope::Bench::median(ourTimes);
    std::printf("compress_200_files_100mb_ms %.0f ms\n", ourMedian);
    if (haveZip) {
        const double theirMedian = Vantrope::Bench::median(theirTimes);
        std::printf("zip_cli_200_files_100mb_ms %.0f ms\n", theirMedian);
        std::printf("compress_vs_zip_ratio %.2f ratio\n", ourMedian / theirMedian);
        std::printf("compress_size_vs_zip_ratio %.3f ratio\n", double(ourSize) / double(theirSize));
    }
    std::printf("compress_peak_rss_mb %.1f MB\n", peakResidentMegabytes());
    return 0;
}
