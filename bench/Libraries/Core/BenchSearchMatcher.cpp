// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints how long filtering the shelf's action list for typed text takes, as "name value unit" lines.

#include "Libraries/Core/SearchMatcher.h"
#include "support/BenchSupport.h"

#include <chrono>
#include <cstdio>
#include <vector>

using Vantrope::SearchItem;
using Vantrope::SearchMatcher;

namespace {

// Roughly what a shelf with files offers: its actions, file operations, share targets, a few
// operations of the user's own.
QList<SearchItem> actionItems()
{
    const char* const rows[][2] = {
        {"Open With", ""},
        {"Open", ""},
        {"Show in File Manager", "folder,reveal"},
        {"Quick Look", "preview"},
        {"Send by Email", "email,mail,send"},
        {"Send to Phone (KDE Connect)", "phone,send"},
        {"Send via Bluetooth", "bluetooth"},
        {"Copy Vantrope Link", "cloud,upload,compress"},
        {"Copy Google Drive Link", "cloud,upload,compress"},
        {"Copy OneDrive Link", "cloud,upload,compress"},
        {"Copy Dropbox Link", "cloud,upload,compress"},
        {"Copy Imgur Link", "cloud,upload,compress"},
        {"Copy S3 Link", "cloud,upload,compress"},
        {"Resize Images", "image"},
        {"Convert Images", "format"},
        {"Compress Images", "quality"},
        {"Remove Metadata", "exif"},
        {"Stitch Images", "merge"},
        {"Extract Text", "ocr"},
        {"Images to PDF", ""},
        {"Set as Wallpaper", "Wallpaper"},
        {"Copy Text Content", ""},
        {"Get Info", ""},
        {"Compress", "archive,compress"},
        {"Copy To…", "finder,location,destination"},
        {"Move To…", "finder,location,destination"},
        {"Rename…", "filename"},
        {"Copy Path", "file,terminal"},
        {"Move to Trash", "delete,remove,trash"},
        {"Copy to Clipboard", "pasteboard,copy,clipboard"},
        {"Add from Clipboard", "pasteboard,paste"},
        {"Clear Shelf", "remove,empty"},
        {"Dock Shelf", ""},
        {"Pin Shelf", ""},
        {"Move to New Shelf", ""},
        {"Shelf Settings", ""},
        {"Preferences…", ""},
        {"Rename Files by Date", "filename"},
        {"Resize to 50 %", "image"},
        {"Convert to JPEG", "format"},
        {"Convert to PNG", "format"},
        {"Convert to WebP", "format"},
        {"Optimize for Web", "quality"},
        {"Make Thumbnail", "image"},
        {"Rotate Left", "image"},
        {"Rotate Right", "image"},
        {"Flip Horizontally", "image"},
        {"Upload to Server", "upload"},
        {"Résumé Export", ""},
        {"Créer une archive", "archive"},
        {"Encode Video", "film"},
        {"Extract Audio", "sound"},
        {"Count Lines", "text"},
        {"Checksum SHA-256", "hash"},
        {"Open in Terminal", "terminal,shell"},
        {"Print", "printer"},
        {"Make Alias", "link"},
        {"Duplicate", "copy"},
        {"Tag Red", "label,colour"},
        {"Tag Blue", "label,colour"},
    };
    QList<SearchItem> items;
    int number = 0;
    for (const auto& row : rows) {
        const QString keywords = QString::fromUtf8(row[1]);
        items.append(SearchItem{QStringLiteral("action_%1").arg(number++), QString::fromUtf8(row[0]),
                                QStringLiteral("action-icon"), keywords.split(u',', Qt::SkipEmptyParts)});
    }
    return items;
}

const QStringList queries{QStringLiteral("c"),         QStringLiteral("co"),     QStringLiteral("comp"),
                          QStringLiteral("compress"),  QStringLiteral("zip f"),  QStringLiteral("copy li"),
                          QStringLiteral("resize im"), QStringLiteral("trash"),  QStringLiteral("résumé"),
                          QStringLiteral("up"),        QStringLiteral("open w"), QStringLiteral("xyz")};

// Microseconds per filter over the typical queries: the median of several passes.
double microsecondsPerFilter(const SearchMatcher& matcher, qsizetype& sink)
{
    constexpr int rounds = 2000;
    std::vector<double> passes;
    for (int pass = 0; pass < 7; ++pass) {
        const auto start = std::chrono::steady_clock::now();
        for (int round = 0; round < rounds; ++round) {
            for (const QString& query : queries) {
                sink += matcher.filter(query).size();
            }
        }
        const double elapsed =
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
        passes.push_back(elapsed / (rounds * queries.size()));
    }
    return Vantrope::Bench::median(passes);
}

} // namespace

int main()
{
    qsizetype sink = 0;
    const QList<SearchItem> actions = actionItems();
    const SearchMatcher matcher(actions);
    std::printf("action_search_filter_us %.2f us\n", microsecondsPerFilter(matcher, sink));

    QList<SearchItem> many;
    while (many.size() < 200) {
        for (SearchItem item : actions) {
            item.identifier += QStringLiteral("_%1").arg(many.size());
            many.append(item);
        }
    }
    many.resize(200);
    const auto prepareStart = std::chrono::steady_clock::now();
    const SearchMatcher large(many);
    const double prepare =
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - prepareStart).count();
    std::printf("action_search_filter_200_items_us %.2f us\n", microsecondsPerFilter(large, sink));
    std::printf("action_search_prepare_200_items_us %.0f us\n", prepare);
    std::fprintf(stderr, "(%lld results)\n", static_cast<long long>(sink));
    return 0;
}
