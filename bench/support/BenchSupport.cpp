// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "BenchSupport.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <QFile>
#include <QStandardPaths>
#include <QString>
#include <unistd.h>

namespace Vantrope::Bench {

double median(std::vector<double> values)
{
    if (values.empty()) {
        return -1;
    }
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double residentMegabytes(qint64 pid)
{
    QFile status(pid > 0 ? QStringLiteral("/proc/%1/status").arg(pid) : QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
        }
    }
    return -1;
}

std::optional<int> runOnOwnDisplay(char* argv[], std::initializer_list<const char*> tools)
{
    if (qEnvironmentVariable("VANTROPE_BENCH_DISPLAY") == QStringLiteral("1")) {
        return std::nullopt;
    }
    for (const char* tool : tools) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty()) {
            std::fprintf(stderr, "skipped: %s is missing (scripts/deps.sh test installs it)\n", tool);
            return 0;
        }
    }
    ::setenv("VANTROPE_BENCH_DISPLAY", "1", 1);
    ::execl(WITH_DISPLAY_SCRIPT, WITH_DISPLAY_SCRIPT, argv[0], static_cast<char*>(nullptr));
    std::perror("with-display.sh");
    return 1;
}

} // namespace Vantrope::Bench
