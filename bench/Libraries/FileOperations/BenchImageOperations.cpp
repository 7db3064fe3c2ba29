// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// Prints, as "name value unit" lines, how long resizing 50 photos of 12 megapixels to 1600 pixels on the
// long side takes with our resize and with ImageMagick's mogrify on the same files in the same run, our
// peak memory while resizing, and how long reading the text of one A4 page scanned at 300 dpi takes.

#include "Libraries/FileOperations/ImageOperations.h"

#include <chrono>
#include <cstdio>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QLoggingCategory>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <vips/vips.h>

using Vantrope::ImageOperations;

namespace {

constexpr int photoCount = 50;

double peakResidentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return -1;
}

// Starts the peak resident size afresh, so that making the photos does not count.
void resetPeak()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

// A 4000 x 3000 photo-like JPEG: smooth light with grain, which costs an encoder what a photo does.
bool makePhoto(const QString& path)
{
    VipsImage* grain = nullptr;
    VipsImage* x = nullptr;
    if (vips_gaussnoise(&grain, 4000, 3000, "sigma", 12.0, "mean", 0.0, nullptr) != 0 ||
        vips_xyz(&x, 4000, 3000, nullptr) != 0)
        return false;
    // Bands from the coordinates: red rises to the right, green downwards, blue across.
    VipsImage* bands[3] = {};
    VipsImage* xs = nullptr;
    VipsImage* ys = nullptr;
    vips_extract_band(x, &xs, 0, nullptr);
    vips_extract_band(x, &ys, 1, nullptr);
    vips_linear1(xs, &bands[0], 255.0 / 4000, 0.0, nullptr);
    vips_linear1(ys, &bands[1], 255.0 / 3000, 0.0, nullptr);
    VipsImage* sum = nullptr;
    vips_add(xs, ys, &sum, nullptr);
    vips_linear1(sum, &bands[2], 255.0 / 7000, 0.0, nullptr);
    VipsImage* joined = nullptr;
    vips_bandjoin(bands, &joined, 3, nullptr);
    VipsImage* noisy = nullptr;
    vips_add(joined, grain, &noisy, nullptr);
    VipsImage* photo = nullptr;
    vips_cast_uchar(noisy, &photo, nullptr);
    const QByteArray name = QFile::encodeName(path) + "[Q=90]";
    const bool written = photo && vips_image_write_to_file(photo, name.constData(), nullptr) == 0;
    for (VipsImage* image : {grain, x, xs, ys, sum, joined, noisy, photo, bands[0], bands[1], bands[2]})
        if (image)
            g_object_unref(image);
    return written;
}

// Paragraphs of plain prose in a book face at 11 points on A4, as a scanner at 300 dpi gives them.
QString makePage(const QString& path)
{
    QImage page(2480, 3508, QImage::Format_Grayscale8);
    page.fill(Qt::white);
    page.setDotsPerMeterX(11811);
    page.setDotsPerMeterY(11811);
    QPainter painter(&page);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(46); // 11 points at 300 dpi
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QString paragraph = QStringLiteral(
        "The shelf keeps what you set down on it until you pick it up again. Photos dragged from a camera "
        "folder, a report from the mail, a link from the browser: they wait there while you find where they "
        "go, and you can resize, convert or read them without opening another program. ");
    QString text;
    for (int index = 0; index < 9; ++index)
        text += paragraph + QStringLiteral("\n\n");
    painter.drawText(QRect(236, 236, 2480 - 472, 3508 - 472), Qt::TextWordWrap, text);
    painter.end();
    return page.save(path) ? path : QString();
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("vantrope.*=false"));
    if (VIPS_INIT(argv[0]) != 0)
        return 1;
    QTemporaryDir directory;
    // "BenchImageOperations ocr" times the text recognition alone.
    const bool ocrOnly = argc > 1 && qstrcmp(argv[1], "ocr") == 0;
    double ours = -1;
    double theirs = -1;
    double peak = -1;
    QElapsedTimer timer;
    if (!ocrOnly) {
        const QString photos = directory.filePath(QStringLiteral("photos"));
        QDir().mkpath(photos);
        const QString first = photos + QStringLiteral("/photo-00.jpg");
        if (!makePhoto(first)) {
            std::fprintf(stderr, "could not make the photos\n");
            return 1;
        }
        QStringList files{first};
        for (int index = 1; index < photoCount; ++index) {
            const QString copy = photos + QStringLiteral("/photo-%1.jpg").arg(index, 2, 10, QLatin1Char('0'));
            QFile::copy(first, copy);
            files << copy;
        }

        resetPeak();
        timer.start();
        const auto outcome = ImageOperations::resize(
            files, {{QStringLiteral("mode"), QStringLiteral("longSide")}, {QStringLiteral("size"), 1600}},
            directory.filePath(QStringLiteral("ours")), {});
        ours = double(timer.elapsed());
        peak = peakResidentMegabytes();
        if (outcome.outputFiles.size() != photoCount) {
            std::fprintf(stderr, "our resize wrote %d of %d files\n", int(outcome.outputFiles.size()),
                         photoCount);
            return 1;
        }

        if (!QStandardPaths::findExecutable(QStringLiteral("mogrify")).isEmpty()) {
            const QString output = directory.filePath(QStringLiteral("theirs"));
            QDir().mkpath(output);
            QProcess mogrify;
            timer.restart();
            mogrify.start(QStringLiteral("mogrify"),
                          QStringList{QStringLiteral("-path"), output, QStringLiteral("-resize"),
                                      QStringLiteral("1600x1600>"), QStringLiteral("-quality"),
                                      QStringLiteral("90")} +
                              files);
            if (mogrify.waitForFinished(-1) && mogrify.exitCode() == 0)
                theirs = double(timer.elapsed());
            else
                std::fprintf(stderr, "mogrify failed: %s\n", mogrify.readAllStandardError().constData());
        } else {
            std::fprintf(stderr,
                         "mogrify is missing (scripts/deps.sh bench installs it); timing ours alone\n");
        }
    }

    const QString page = makePage(directory.filePath(QStringLiteral("page.png")));
    timer.restart();
    const auto read = ImageOperations::recognizeText(
        {page}, {{QStringLiteral("language"), QStringLiteral("eng")}}, directory.path(), {});
    const double ocr = double(timer.elapsed());
    if (!read.text.simplified().contains(QStringLiteral("without opening another program")))
        std::fprintf(stderr, "the page was not read right: %s\n", qPrintable(read.text.left(200)));
    // The tesseract program on the same page, for what the library costs by itself.
    double cli = -1;
    if (!QStandardPaths::findExecutable(QStringLiteral("tesseract")).isEmpty()) {
        QProcess tesseract;
        timer.restart();
        tesseract.start(QStringLiteral("tesseract"), {page, QStringLiteral("-")});
        if (tesseract.waitForFinished(-1) && tesseract.exitCode() == 0)
            cli = double(timer.elapsed());
    }

    if (!ocrOnly) {
        std::printf("resize_50_photos_ms %.0f ms\n", ours);
        if (theirs > 0) {
            std::printf("mogrify_50_photos_ms %.0f ms\n", theirs);
            std::printf("resize_vs_imagemagick_ratio %.2f ratio\n", ours / theirs);
        }
        std::printf("resize_50_peak_mb %.1f MB\n", peak);
    }
    std::printf("ocr_page_ms %.0f ms\n", ocr);
    if (cli > 0)
        std::printf("tesseract_cli_page_ms %.0f ms\n", cli);
    return 0;
}
