// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImageOperations.h"

#include "FileOperationsLogging.h"
#include "ImageOutputFile.h"
#include "Libraries/Core/Localized.h"
#include "VipsRuntime.h"

#include <cmath>
#include <functional>
#include <mutex>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>
#include <vips/vips.h>

namespace Vantrope {

namespace {

using Choice = OperationSetting::Choice;

struct Format {
    QString value;  // the setting's value
    QString title;  // what a dialog shows
    QString suffix; // the output's extension, which picks vips's saver
    bool lossy = false;
    bool alpha = true;
};

const QList<Format>& allFormats()
{
    static const QList<Format> formats = {
        {QStringLiteral("png"), QStringLiteral("PNG"), QStringLiteral(".png"), false, true},
        {QStringLiteral("jpeg"), QStringLiteral("JPEG"), QStringLiteral(".jpg"), true, false},
        {QStringLiteral("webp"), QStringLiteral("WebP"), QStringLiteral(".webp"), true, true},
        {QStringLiteral("tiff"), QStringLiteral("TIFF"), QStringLiteral(".tif"), false, true},
        {QStringLiteral("heif"), QStringLiteral("HEIF"), QStringLiteral(".heic"), true, true},
        {QStringLiteral("avif"), QStringLiteral("AVIF"), QStringLiteral(".avif"), true, true},
    };
    return formats;
}

// A saver can be built in and still fail for want of an encoder (libheif without x265 or aom), so each
// format is tried once on a tiny image before it is offered.
bool formatWorks(const Format& format)
{
    static std::mutex mutex;
    static QHash<QString, bool> known;
    std::lock_guard lock(mutex);
    const auto found = known.constFind(format.value);
    if (found != known.constEnd())
        return *found;
    bool works = false;
    if (VipsRuntime::canSave(format.suffix)) {
        VipsImage* black = nullptr;
        if (vips_black(&black, 16, 16, "bands", 3, nullptr) == 0) {
            VipsRuntime::Image image(black);
            void* buffer = nullptr;
            size_t size = 0;
            works = vips_image_write_to_buffer(image.get(), format.suffix.toUtf8().constData(), &buffer,
                                               &size, nullptr) == 0;
            g_free(buffer);
        }
        if (!works)
            qCInfo(lcFileOperations) << "Not offering" << format.title << ":" << VipsRuntime::takeError();
    }
    known.insert(format.value, works);
    return works;
}

std::optional<Format> formatNamed(const QString& value)
{
    for (const Format& format : allFormats())
        if (format.value == value)
            return format;
    return std::nullopt;
}

// The format a file is written back in: its own when vips can write it, else PNG, which loses nothing.
Format formatForSuffix(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const Format& format : allFormats()) {
        const bool same = format.suffix.mid(1) == suffix ||
                          (format.value == QLatin1String("jpeg") &&
                           (suffix == QLatin1String("jpeg") || suffix == QLatin1String("jpe"))) ||
                          (format.value == QLatin1String("tiff") && suffix == QLatin1String("tiff")) ||
                          (format.value == QLatin1String("heif") && suffix == QLatin1String("heif"));
        if (same && formatWorks(format)) {
            Format kept = format;
            kept.suffix =
                QLatin1Char('.') + QFileInfo(path).suffix(); // "photo.JPEG" stays "photo (...).JPEG"
            return kept;
        }
    }
    return allFormats().first();
}

QString saverOptions(const Format& format, int quality, int pngCompression)
{
    if (format.value == QLatin1String("jpeg"))
        return QStringLiteral("[Q=%1,optimize_coding=true]").arg(quality);
    if (format.value == QLatin1String("webp") || format.value == QLatin1String("heif") ||
        format.value == QLatin1String("avif"))
        return QStringLiteral("[Q=%1]").arg(quality);
    if (format.value == QLatin1String("png"))
        return QStringLiteral("[compression=%1]").arg(pngCompression);
    if (format.value == QLatin1String("tiff"))
        return QStringLiteral("[compression=deflate,predictor=horizontal]");
    return {};
}

// Formats without transparency get transparent parts on white, as a viewer shows them, not on black.
VipsRuntime::Image prepareFor(VipsRuntime::Image image, const Format& format)
{
    if (!image || format.alpha || !vips_image_hasalpha(image.get()))
        return image;
    VipsArrayDouble* white = vips_array_double_newv(1, 255.0);
    VipsImage* flat = nullptr;
    const bool sixteen = vips_image_get_format(image.get()) == VIPS_FORMAT_USHORT;
    if (sixteen) {
        vips_area_unref(VIPS_AREA(white));
        white = vips_array_double_newv(1, 65535.0);
    }
    const int result = vips_flatten(image.get(), &flat, "background", white, nullptr);
    vips_area_unref(VIPS_AREA(white));
    return result == 0 ? VipsRuntime::Image(flat) : nullptr;
}

QString unreadableMessage()
{
    return Localized("image-operation.unreadable",
                     "The image could not be read; it may be damaged or incomplete.");
}

// What one input produced: an output, a failure in words, or a stop because the run was cancelled.
struct StepResult {
    QString output;
    QString failure;
    bool cancelled = false;
};

using Step = std::function<StepResult(const QString& file, double progressStart, double progressSpan)>;

// Runs `step` on each file in turn, collecting outputs and failures; a cancel removes what was written.
FileOperationOutcome forEachFile(const QStringList& files, const FileOperationContext& context,
                                 const Step& step)
{
    FileOperationOutcome outcome;
    const double span = files.isEmpty() ? 1.0 : 1.0 / files.size();
    for (qsizetype index = 0; index < files.size(); ++index) {
        const QString& file = files.at(index);
        if (context.isCancelled()) {
            outcome.cancelled = true;
            break;
        }
        context.reportProgress(index * span, QFileInfo(file).fileName());
        const StepResult result = step(file, index * span, span);
        if (result.cancelled) {
            outcome.cancelled = true;
            break;
        }
        if (!result.failure.isEmpty()) {
            qCWarning(lcFileOperations) << "Image operation failed on" << file << ":" << result.failure;
            outcome.failures.append({file, result.failure});
        } else if (!result.output.isEmpty()) {
            outcome.outputFiles.append(result.output);
        }
    }
    if (outcome.cancelled) {
        for (const QString& output : std::as_const(outcome.outputFiles))
            QFile::remove(output);
        outcome.outputFiles.clear();
    } else {
        context.reportProgress(1.0, QString());
    }
    return outcome;
}

// Writes `image` in `format` to a new file named after `baseName` in `outputDirectory`.
StepResult writeStep(VipsImage* image, const Format& format, const QString& options,
                     const QString& outputDirectory, const QString& baseName,
                     const FileOperationContext& context, double progressStart, double progressSpan,
                     const QString& title)
{
    auto output = ImageOutputFile::create(outputDirectory, format.suffix);
    if (!output)
        return {.failure = output.error()};
    bool cancelled = false;
    const auto written = VipsRuntime::write(image, output->temporaryPath(), options, context, progressStart,
                                            progressSpan, title, &cancelled);
    if (cancelled)
        return {.cancelled = true};
    if (!written) {
        qCWarning(lcFileOperations) << "libvips:" << written.error();
        return {.failure = unreadableMessage()};
    }
    auto committed = output->commit(baseName);
    if (!committed)
        return {.failure = committed.error()};
    return {.output = *committed};
}

int intValue(const QVariantMap& values, const char* key, int fallback)
{
    const QVariant value = values.value(QString::fromLatin1(key));
    return value.isValid() ? value.toInt() : fallback;
}

QString stringValue(const QVariantMap& values, const char* key, const QString& fallback)
{
    const QVariant value = values.value(QString::fromLatin1(key));
    return value.isValid() ? value.toString() : fallback;
}

} // namespace

OperationSettings ImageOperations::resizeSettings()
{
    OperationSetting mode{QStringLiteral("mode"), Localized("image-resize.mode", "Resize by"),
                          OperationSetting::Type::choice, QStringLiteral("longSide")};
    mode.choices = {
        {QStringLiteral("longSide"), Localized("image-resize.mode.long-side", "Long side in pixels")},
        {QStringLiteral("width"), Localized("image-resize.mode.width", "Width in pixels")},
        {QStringLiteral("height"), Localized("image-resize.mode.height", "Height in pixels")},
        {QStringLiteral("percent"), Localized("image-resize.mode.percent", "Percent")},
    };
    OperationSetting size{QStringLiteral("size"),
                          Localized("image-resize.size", "Size"),
                          OperationSetting::Type::integer,
                          1600,
                          1,
                          100000};
    OperationSetting enlarge{QStringLiteral("enlarge"),
                             Localized("image-resize.enlarge", "Enlarge images smaller than that"),
                             OperationSetting::Type::boolean, false};
    return {mode, size, enlarge};
}

FileOperationOutcome ImageOperations::resize(const QStringList& files, const QVariantMap& values,
                                             const QString& outputDirectory,
                                             const FileOperationContext& context)
{
    const QString mode = stringValue(values, "mode", QStringLiteral("longSide"));
    const int size = std::max(1, intValue(values, "size", 1600));
    const bool enlarge = values.value(QStringLiteral("enlarge")).toBool();
    if (!VipsRuntime::start())
        return forEachFile(files, context, [](const QString&, double, double) {
            return StepResult{.failure =
                                  Localized("image-operation.no-vips", "Images cannot be processed here.")};
        });
    return forEachFile(files, context, [&](const QString& file, double start, double span) -> StepResult {
        const QByteArray name = QFile::encodeName(file);
        int width = size;
        int height = size;
        if (mode == QLatin1String("width")) {
            height = VIPS_MAX_COORD;
        } else if (mode == QLatin1String("height")) {
            width = VIPS_MAX_COORD;
        } else if (mode == QLatin1String("percent")) {
            // The header alone tells the size; the orientation swaps it for images shot upright.
            VipsRuntime::Image header = VipsRuntime::load(file, true);
            if (!header) {
                qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
                return {.failure = unreadableMessage()};
            }
            int sourceWidth = vips_image_get_width(header.get());
            int sourceHeight = vips_image_get_height(header.get());
            if (vips_image_get_orientation_swap(header.get()))
                std::swap(sourceWidth, sourceHeight);
            width = std::max(1, int(std::lround(sourceWidth * (size / 100.0))));
            height = std::max(1, int(std::lround(sourceHeight * (size / 100.0))));
        }
        VipsImage* thumbnail = nullptr;
        // Thumbnail shrinks while loading (JPEG DCT scaling, WebP and HEIF at a smaller size, pyramid
        // levels), so a huge image never lies whole in memory; it also turns the image by its orientation.
        if (vips_thumbnail(name.constData(), &thumbnail, width, "height", height, "size",
                           enlarge ? VIPS_SIZE_BOTH : VIPS_SIZE_DOWN, "fail_on", VIPS_FAIL_ON_TRUNCATED,
                           nullptr) != 0) {
            qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
            return {.failure = unreadableMessage()};
        }
        VipsRuntime::Image image(thumbnail);
        const Format format = formatForSuffix(file);
        image = prepareFor(std::move(image), format);
        if (!image)
            return {.failure = unreadableMessage()};
        const QString baseName = QStringLiteral("%1 (%2x%3)")
                                     .arg(ImageOutputFile::baseNameOf(file))
                                     .arg(vips_image_get_width(image.get()))
                                     .arg(vips_image_get_height(image.get()));
        return writeStep(image.get(), format, saverOptions(format, 90, 6), outputDirectory, baseName, context,
                         start, span, QFileInfo(file).fileName());
    });
}

OperationSettings ImageOperations::convertSettings()
{
    OperationSetting format{QStringLiteral("format"), Localized("image-convert.format", "Format"),
                            OperationSetting::Type::choice, QString()};
    for (const Format& candidate : allFormats())
        if (formatWorks(candidate))
            format.choices.append({candidate.value, candidate.title});
    if (!format.choices.isEmpty())
        format.defaultValue = format.choices.first().value;
    for (const Choice& choice : std::as_const(format.choices))
        if (choice.value == QLatin1String("jpeg"))
            format.defaultValue = choice.value;
    OperationSetting quality{QStringLiteral("quality"),
                             Localized("image-convert.quality", "Quality (JPEG, WebP, HEIF, AVIF)"),
                             OperationSetting::Type::integer,
                             90,
                             1,
                             100};
    return {format, quality};
}

FileOperationOutcome ImageOperations::convert(const QStringList& files, const QVariantMap& values,
                                              const QString& outputDirectory,
                                              const FileOperationContext& context)
{
    const auto format = formatNamed(stringValue(values, "format", QStringLiteral("jpeg")));
    const int quality = intValue(values, "quality", 90);
    return forEachFile(files, context, [&](const QString& file, double start, double span) -> StepResult {
        if (!format || !formatWorks(*format))
            return {.failure = Localized("image-convert.unsupported",
                                         "Images cannot be written in that format here.")};
        VipsRuntime::Image image = prepareFor(VipsRuntime::load(file, true), *format);
        if (!image) {
            qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
            return {.failure = unreadableMessage()};
        }
        return writeStep(image.get(), *format, saverOptions(*format, quality, 6), outputDirectory,
                         ImageOutputFile::baseNameOf(file), context, start, span, QFileInfo(file).fileName());
    });
}

OperationSettings ImageOperations::compressSettings()
{
    OperationSetting quality{QStringLiteral("quality"),
                             Localized("image-compress.quality", "Quality (JPEG, WebP, HEIF, AVIF)"),
                             OperationSetting::Type::integer,
                             75,
                             1,
                             100};
    OperationSetting png{QStringLiteral("pngCompression"),
                         Localized("image-compress.png-compression", "PNG compression level"),
                         OperationSetting::Type::integer,
                         9,
                         0,
                         9};
    return {quality, png};
}

FileOperationOutcome ImageOperations::compress(const QStringList& files, const QVariantMap& values,
                                               const QString& outputDirectory,
                                               const FileOperationContext& context)
{
    const int quality = intValue(values, "quality", 75);
    const int pngCompression = intValue(values, "pngCompression", 9);
    return forEachFile(files, context, [&](const QString& file, double start, double span) -> StepResult {
        const Format format = formatForSuffix(file);
        if (QFileInfo(file).suffix().compare(format.suffix.mid(1), Qt::CaseInsensitive) != 0)
            return {.failure =
                        Localized("image-compress.unsupported", "Images of this kind cannot be compressed.")};
        VipsRuntime::Image image = VipsRuntime::load(file, true);
        if (!image) {
            qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
            return {.failure = unreadableMessage()};
        }
        return writeStep(image.get(), format, saverOptions(format, quality, pngCompression), outputDirectory,
                         ImageOutputFile::baseNameOf(file), context, start, span, QFileInfo(file).fileName());
    });
}

bool ImageOperations::canRead(const QString& mimeType)
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(mimeType);
    if (!type.isValid() || !type.name().startsWith(QLatin1String("image/")))
        return false;
    const QStringList loadable = VipsRuntime::loadableSuffixes();
    for (const QString& suffix : type.suffixes())
        if (loadable.contains(QLatin1Char('.') + suffix.toLower()))
            return true;
    return false;
}

// Not written yet: these answer a failure per file so callers can be wired up meanwhile.
namespace {
FileOperationOutcome notYet(const QStringList& files)
{
    FileOperationOutcome outcome;
    for (const QString& file : files)
        outcome.failures.append(
            {file, Localized("image-operation.not-yet", "This operation is not available yet.")});
    return outcome;
}
} // namespace

OperationSettings ImageOperations::stripMetadataSettings()
{
    return {};
}
FileOperationOutcome ImageOperations::stripMetadata(const QStringList& files, const QVariantMap&,
                                                    const QString&, const FileOperationContext&)
{
    return notYet(files);
}
OperationSettings ImageOperations::stitchSettings()
{
    return {};
}
FileOperationOutcome ImageOperations::stitch(const QStringList& files, const QVariantMap&, const QString&,
                                             const FileOperationContext&)
{
    return notYet(files);
}
OperationSettings ImageOperations::recognizeTextSettings()
{
    return {};
}
FileOperationOutcome ImageOperations::recognizeText(const QStringList& files, const QVariantMap&,
                                                    const QString&, const FileOperationContext&)
{
    return notYet(files);
}
OperationSettings ImageOperations::imagesToPdfSettings()
{
    return {};
}
FileOperationOutcome ImageOperations::imagesToPdf(const QStringList& files, const QVariantMap&,
                                                  const QString&, const FileOperationContext&)
{
    return notYet(files);
}
QList<std::pair<QString, QString>> ImageOperations::describeMetadata(const QString&)
{
    return {};
}

} // namespace Vantrope
