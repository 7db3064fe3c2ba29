// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints how long resolving a file bookmark takes, as "name value unit" lines.

#include "Libraries/Core/FileBookmark.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <vector>

using Vantrope::FileBookmark;

namespace {

bool touch(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("x") == 1;
}

// `prepare` runs untimed before every repetition; `expected` is where the resolve must land.
std::optional<double> medianMicroseconds(const QByteArray& bookmark, int repetitions,
                                         const std::function<QString(int)>& prepare)
{
    std::vector<double> samples;
    samples.reserve(size_t(repetitions));
    for (int i = 0; i < repetitions; ++i) {
        const QString expected = prepare(i);
        const auto start = std::chrono::steady_clock::now();
        const auto resolution = FileBookmark::resolve(bookmark);
        const auto elapsed = std::chrono::steady_clock::now() - start;
        if (!resolution || resolution->url.toLocalFile() != expected) {
            std::fprintf(stderr, "resolve went wrong: expected %s, got %s\n", qPrintable(expected),
                         resolution ? qPrintable(resolution->url.toLocalFile())
                                    : qPrintable(resolution.error().description()));
            return std::nullopt;
        }
        samples.push_back(std::chrono::duration<double, std::micro>(elapsed).count());
    }
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

void report(const char* name, std::optional<double> value, bool& failed)
{
    if (!value) {
        failed = true;
        return;
    }
    std::printf("%s %.1f us\n", name, *value);
    std::fflush(stdout);
}

} // namespace

int main()
{
    QLoggingCategory::setFilterRules(QStringLiteral("vantrope.*.debug=false"));

    // The home, and with it the home trash, lives in a temporary folder so nothing real is touched.
    QTemporaryDir root;
    if (!root.isValid()) {
        std::fprintf(stderr, "no temporary folder\n");
        return 1;
    }
    const QString home = root.path() + QStringLiteral("/home");
    for (const char* folder :
         {"/home/.local/share", "/home/.config", "/home/.cache", "/home/Documents", "/home/many"}) {
        QDir().mkpath(root.path() + QLatin1String(folder));
    }
    qputenv("HOME", QFile::encodeName(home));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home + QStringLiteral("/.local/share")));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home + QStringLiteral("/.config")));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home + QStringLiteral("/.cache")));

    bool failed = false;

    const QString unmoved = home + QStringLiteral("/Documents/unmoved.txt");
    touch(unmoved);
    const QByteArray unmovedBookmark =
        FileBookmark::create(QUrl::fromLocalFile(unmoved)).value_or(QByteArray());
    report("bookmark_resolve_unmoved_us",
           medianMicroseconds(unmovedBookmark, 5000, [&](int) { return unmoved; }), failed);

    const QString many = home + QStringLiteral("/many/");
    for (int i = 0; i < 9999; ++i) {
        touch(many + QStringLiteral("file-%1.txt").arg(i, 5, 10, QLatin1Char('0')));
    }
    QString current = many + QStringLiteral("target.txt");
    touch(current);
    const QByteArray renamedBookmark =
        FileBookmark::create(QUrl::fromLocalFile(current)).value_or(QByteArray());
    // A new name each time puts the file at a new place in the folder's listing order.
    report("bookmark_resolve_renamed_us",
           medianMicroseconds(renamedBookmark, 300,
                              [&](int i) {
                                  const QString next = many + QStringLiteral("renamed-%1.txt").arg(i);
                                  QFile::rename(current, next);
                                  current = next;
                                  return next;
                              }),
           failed);

    const QString trashed = home + QStringLiteral("/Documents/trashed.txt");
    touch(trashed);
    const QByteArray trashBookmark =
        FileBookmark::create(QUrl::fromLocalFile(trashed)).value_or(QByteArray());
    QFile file(trashed);
    if (!file.moveToTrash()) {
        std::fprintf(stderr, "cannot move %s to the trash\n", qPrintable(trashed));
        failed = true;
    } else {
        const QString inTrash = file.fileName();
        report("bookmark_resolve_trash_us",
               medianMicroseconds(trashBookmark, 2000, [&](int) { return inTrash; }), failed);
    }
    return failed ? 1 : 0;
}
