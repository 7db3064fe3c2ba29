// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImagePdfWriter.h"

#include "FileOperationsLogging.h"
#include "ImageOutputFile.h"
#include "Libraries/Core/Localized.h"
#include "VipsRuntime.h"

#include <memory>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <vips/vips.h>

namespace Vantrope {

namespace {

constexpr int pageDotsPerInch = 300;
constexpr double marginMillimetres = 10;
constexpr int largestFitSide = 6000;

struct PageImage {
    QImage image;
    double dotsPerInch = 150;
};

// Loads the image turned by its orientation and shrunk, if need be, into a box of `boxWidth` x `boxHeight`.
std::expected<PageImage, QString> loadForPage(const QString& file, int boxWidth, int boxHeight)
{
    const QByteArray name = QFile::encodeName(file);
    VipsImage* thumbnail = nullptr;
    if (vips_thumbnail(name.constData(), &thumbnail, boxWidth, "height", boxHeight, "size", VIPS_SIZE_DOWN,
                       "fail_on", VIPS_FAIL_ON_TRUNCATED, nullptr) != 0)
        return std::unexpected(VipsRuntime::takeError());
    VipsRuntime::Image image(thumbnail);
    PageImage page;
    // vips keeps resolution in pixels per millimetre; JPEG's default of 72 dpi means "not recorded".
    const double recorded = vips_image_get_xres(image.get()) * 25.4;
    if (recorded >= 100)
        page.dotsPerInch = recorded;
    auto converted = VipsRuntime::toQImage(image.get());
    if (!converted)
        return std::unexpected(converted.error());
    page.image = std::move(*converted);
    return page;
}

} // namespace

FileOperationOutcome ImagePdfWriter::write(const QStringList& files, PageSize pageSize,
                                           const QString& outputDirectory,
                                           const FileOperationContext& context)
{
    FileOperationOutcome outcome;
    if (files.isEmpty())
        return outcome;
    auto output = ImageOutputFile::create(outputDirectory, QStringLiteral(".pdf"));
    if (!output) {
        for (const QString& file : files)
            outcome.failures.append({file, output.error()});
        return outcome;
    }
    if (!VipsRuntime::start()) {
        for (const QString& file : files)
            outcome.failures.append(
                {file, Localized("image-operation.no-vips", "Images cannot be processed here.")});
        return outcome;
    }
    QPdfWriter writer(output->temporaryPath());
    writer.setResolution(pageDotsPerInch);
    writer.setCreator(QStringLiteral("Vantrope"));
    writer.setTitle(ImageOutputFile::baseNameOf(files.first()));
    QPainter painter;
    int pages = 0;
    const double span = 1.0 / files.size();
    for (qsizetype index = 0; index < files.size(); ++index) {
        const QString& file = files.at(index);
        if (context.isCancelled()) {
            outcome.cancelled = true;
            break;
        }
        context.reportProgress(index * span, QFileInfo(file).fileName());
        // A paper page holds at most its printable area at the page resolution; the image is never larger.
        const QPageSize paper(pageSize == PageSize::letter ? QPageSize::Letter : QPageSize::A4);
        const QSize paperPixels = paper.sizePixels(pageDotsPerInch);
        const int marginPixels = int(marginMillimetres / 25.4 * pageDotsPerInch);
        const int box = pageSize == PageSize::fitImage
                            ? largestFitSide
                            : std::max(paperPixels.width(), paperPixels.height()) - 2 * marginPixels;
        auto page = loadForPage(file, box, box);
        if (!page) {
            qCWarning(lcFileOperations) << "No PDF page for" << file << ":" << page.error();
            outcome.failures.append(
                {file, Localized("image-operation.unreadable",
                                 "The image could not be read; it may be damaged or incomplete.")});
            continue;
        }
        const QImage& image = page->image;
        QPageLayout layout;
        if (pageSize == PageSize::fitImage) {
            const QSizeF points(image.width() * 72.0 / page->dotsPerInch,
                                image.height() * 72.0 / page->dotsPerInch);
            layout = QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                                 QPageLayout::Portrait, QMarginsF());
        } else {
            const auto orientation =
                image.width() > image.height() ? QPageLayout::Landscape : QPageLayout::Portrait;
            layout = QPageLayout(
                paper, orientation,
                QMarginsF(marginMillimetres, marginMillimetres, marginMillimetres, marginMillimetres),
                QPageLayout::Millimeter);
        }
        writer.setPageLayout(layout);
        if (pages == 0) {
            if (!painter.begin(&writer)) {
                outcome.failures.append(
                    {file, Localized("image-pdf.write-failed", "The PDF could not be written.")});
                break;
            }
        } else if (!writer.newPage()) {
            outcome.failures.append(
                {file, Localized("image-pdf.write-failed", "The PDF could not be written.")});
            break;
        }
        // The writer's size is the current page inside its margins, in pixels at the writer's resolution.
        const QRect area(0, 0, writer.width(), writer.height());
        QSize drawn = image.size().scaled(area.size(), Qt::KeepAspectRatio);
        if (pageSize != PageSize::fitImage) {
            const QSize natural(int(image.width() * pageDotsPerInch / page->dotsPerInch),
                                int(image.height() * pageDotsPerInch / page->dotsPerInch));
            if (natural.width() <= area.width() && natural.height() <= area.height())
                drawn = natural; // a small image is not blown up to fill the page
        }
        const QRect target(area.x() + (area.width() - drawn.width()) / 2,
                           area.y() + (area.height() - drawn.height()) / 2, drawn.width(), drawn.height());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, image);
        ++pages;
    }
    if (painter.isActive())
        painter.end();
    if (outcome.cancelled || pages == 0)
        return outcome; // the temporary file goes with `output`
    auto committed = output->commit(ImageOutputFile::baseNameOf(files.first()));
    if (!committed) {
        for (const QString& file : files)
            outcome.failures.append({file, committed.error()});
        return outcome;
    }
    outcome.outputFiles.append(*committed);
    context.reportProgress(1.0, QString());
    return outcome;
}

} // namespace Vantrope
