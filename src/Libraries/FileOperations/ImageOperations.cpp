// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ImageOperations.h"

#include "FileOperationsLogging.h"
#include "ImageMetadata.h"
#include "ImageOutputFile.h"
#include "ImagePdfWriter.h"
#include "Libraries/Core/Localized.h"
#include "TextRecognizer.h"
#include "VipsRuntime.h"

#include <cmath>
#include <functional>
#include <mutex>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImage>
#include <QMimeDatabase>
#include <QStorageInfo>
#include <vips/vips.h>

namespace Vantrope {

namespace {

using Choice = OperationSetting::Choice;

constexpr qint64 largestOutputPixels = 500'000'000;
constexpr qint64 minimumFreeBytes = 1 << 20;

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

// The image as it is meant to be seen: turned by its EXIF orientation, which not every format written
// keeps. Only a turned image is read with random access; the rest stream from top to bottom.
VipsRuntime::Image loadUpright(const QString& file)
{
    VipsRuntime::Image image = VipsRuntime::load(file, true);
    if (!image || vips_image_get_orientation(image.get()) <= 1)
        return image;
    image = VipsRuntime::load(file, false);
    VipsImage* turned = nullptr;
    if (!image || vips_autorot(image.get(), &turned, nullptr) != 0)
        return nullptr;
    return VipsRuntime::Image(turned);
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
        // vips names no cause a user would know; a full disk is the one that is not the image's fault.
        if (QStorageInfo(outputDirectory).bytesAvailable() < minimumFreeBytes)
            return {.failure = Localized("image-operation.disk-full", "There is no space left in “%1”.")
                                   .arg(outputDirectory)};
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
        // Enlarging asks for pixels nobody checked: a slip of a digit must not fill the disk.
        if (qint64(vips_image_get_width(image.get())) * vips_image_get_height(image.get()) >
            largestOutputPixels)
            return {.failure = Localized("image-resize.too-large",
                                         "The resized image would be larger than %1 megapixels.")
                                   .arg(largestOutputPixels / 1000000)};
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
        VipsRuntime::Image image = prepareFor(loadUpright(file), *format);
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
        VipsRuntime::Image image = loadUpright(file);
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

OperationSettings ImageOperations::stripMetadataSettings()
{
    OperationSetting remove{QStringLiteral("remove"), Localized("image-strip.remove", "Remove"),
                            OperationSetting::Type::choice, QStringLiteral("all")};
    remove.choices = {
        {QStringLiteral("all"),
         Localized("image-strip.remove.all", "All metadata (EXIF, IPTC, XMP, location)")},
        {QStringLiteral("location"), Localized("image-strip.remove.location", "Only the location")},
    };
    return {remove};
}

FileOperationOutcome ImageOperations::stripMetadata(const QStringList& files, const QVariantMap& values,
                                                    const QString& outputDirectory,
                                                    const FileOperationContext& context)
{
    const auto removal = stringValue(values, "remove", QStringLiteral("all")) == QLatin1String("location")
                             ? ImageMetadata::Removal::location
                             : ImageMetadata::Removal::all;
    return forEachFile(files, context, [&](const QString& file, double, double) -> StepResult {
        if (!ImageMetadata::canStrip(file))
            return {.failure = Localized("image-metadata.unsupported",
                                         "Metadata can only be removed from JPEG, PNG and WebP images.")};
        // The copy is stripped, never the original; the image data is copied as it is.
        auto output = ImageOutputFile::create(outputDirectory, QLatin1Char('.') + QFileInfo(file).suffix());
        if (!output)
            return {.failure = output.error()};
        QFile source(file);
        QFile target(output->temporaryPath());
        if (!source.open(QIODevice::ReadOnly))
            return {.failure = Localized("image-operation.unopenable", "The file could not be opened: %1")
                                   .arg(source.errorString())};
        if (!target.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return {.failure = target.errorString()};
        QByteArray block;
        while (!(block = source.read(1 << 20)).isEmpty())
            if (target.write(block) != block.size())
                return {.failure =
                            Localized("image-operation.copy-failed", "The copy could not be written: %1")
                                .arg(target.errorString())};
        if (source.error() != QFile::NoError)
            return {.failure = Localized("image-operation.unopenable", "The file could not be opened: %1")
                                   .arg(source.errorString())};
        target.close();
        if (context.isCancelled())
            return {.cancelled = true};
        const auto stripped = ImageMetadata::strip(output->temporaryPath(), removal);
        if (!stripped)
            return {.failure = stripped.error()};
        auto committed = output->commit(ImageOutputFile::baseNameOf(file));
        if (!committed)
            return {.failure = committed.error()};
        return {.output = *committed};
    });
}

OperationSettings ImageOperations::stitchSettings()
{
    OperationSetting direction{QStringLiteral("direction"), Localized("image-stitch.direction", "Direction"),
                               OperationSetting::Type::choice, QStringLiteral("horizontal")};
    direction.choices = {
        {QStringLiteral("horizontal"), Localized("image-stitch.direction.horizontal", "Side by side")},
        {QStringLiteral("vertical"), Localized("image-stitch.direction.vertical", "One above the other")},
    };
    OperationSetting spacing{QStringLiteral("spacing"),
                             Localized("image-stitch.spacing", "Spacing in pixels"),
                             OperationSetting::Type::integer,
                             0,
                             0,
                             1000};
    OperationSetting background{QStringLiteral("background"),
                                Localized("image-stitch.background", "Background"),
                                OperationSetting::Type::choice, QStringLiteral("white")};
    background.choices = {
        {QStringLiteral("white"), Localized("image-stitch.background.white", "White")},
        {QStringLiteral("black"), Localized("image-stitch.background.black", "Black")},
        {QStringLiteral("transparent"),
         Localized("image-stitch.background.transparent", "Transparent (PNG)")},
    };
    OperationSetting format{QStringLiteral("format"), Localized("image-stitch.format", "Format"),
                            OperationSetting::Type::choice, QStringLiteral("png")};
    format.choices = {{QStringLiteral("png"), QStringLiteral("PNG")},
                      {QStringLiteral("jpeg"), QStringLiteral("JPEG")}};
    return {direction, spacing, background, format};
}

FileOperationOutcome ImageOperations::stitch(const QStringList& files, const QVariantMap& values,
                                             const QString& outputDirectory,
                                             const FileOperationContext& context)
{
    const bool horizontal =
        stringValue(values, "direction", QStringLiteral("horizontal")) != QLatin1String("vertical");
    const int spacing = intValue(values, "spacing", 0);
    const auto format =
        formatNamed(stringValue(values, "format", QStringLiteral("png"))).value_or(allFormats().first());
    const QString backgroundName = stringValue(values, "background", QStringLiteral("white"));
    const bool transparent = backgroundName == QLatin1String("transparent") && format.alpha;
    const double shade = backgroundName == QLatin1String("black") ? 0 : 255;
    FileOperationOutcome outcome;
    auto fail = [&outcome](const QString& file, const QString& message) {
        qCWarning(lcFileOperations) << "Not stitching" << file << ":" << message;
        outcome.failures.append({file, message});
    };
    if (!VipsRuntime::start()) {
        for (const QString& file : files)
            fail(file, Localized("image-operation.no-vips", "Images cannot be processed here."));
        return outcome;
    }
    // Every image is brought to the smallest height (side by side) or width (one above the other), never
    // enlarged, so that no image is cut or dwarfed.
    QStringList readable;
    int common = VIPS_MAX_COORD;
    for (const QString& file : files) {
        VipsRuntime::Image header = VipsRuntime::load(file, true);
        if (!header) {
            VipsRuntime::takeError();
            fail(file, unreadableMessage());
            continue;
        }
        const bool swap = vips_image_get_orientation_swap(header.get());
        const int width = swap ? vips_image_get_height(header.get()) : vips_image_get_width(header.get());
        const int height = swap ? vips_image_get_width(header.get()) : vips_image_get_height(header.get());
        common = std::min(common, horizontal ? height : width);
        readable << file;
    }
    std::vector<VipsRuntime::Image> parts;
    QStringList used;
    for (qsizetype index = 0; index < readable.size(); ++index) {
        const QString& file = readable.at(index);
        if (context.isCancelled()) {
            outcome.cancelled = true;
            return outcome;
        }
        context.reportProgress(0.5 * index / readable.size(), QFileInfo(file).fileName());
        const QByteArray name = QFile::encodeName(file);
        VipsImage* thumbnail = nullptr;
        if (vips_thumbnail(name.constData(), &thumbnail, horizontal ? VIPS_MAX_COORD : common, "height",
                           horizontal ? common : VIPS_MAX_COORD, "size", VIPS_SIZE_DOWN, "fail_on",
                           VIPS_FAIL_ON_TRUNCATED, nullptr) != 0) {
            VipsRuntime::takeError();
            fail(file, unreadableMessage());
            continue;
        }
        VipsRuntime::Image image(thumbnail);
        VipsImage* step = nullptr;
        // One colour space and depth for all, with alpha only when the background is transparent.
        if (vips_colourspace(image.get(), &step, VIPS_INTERPRETATION_sRGB, nullptr) == 0) {
            image.reset(step);
            if (vips_cast_uchar(image.get(), &step, nullptr) == 0) {
                image.reset(step);
                step = nullptr;
                int ok = 0;
                if (transparent && !vips_image_hasalpha(image.get()))
                    ok = vips_bandjoin_const1(image.get(), &step, 255, nullptr);
                else if (!transparent && vips_image_hasalpha(image.get())) {
                    VipsArrayDouble* colour = vips_array_double_newv(1, shade);
                    ok = vips_flatten(image.get(), &step, "background", colour, nullptr);
                    vips_area_unref(VIPS_AREA(colour));
                }
                if (ok == 0 && step)
                    image.reset(step);
                else if (ok != 0)
                    image.reset();
            } else {
                image.reset();
            }
        } else {
            image.reset();
        }
        // Decoding each part now finds a damaged file while it can still be left out.
        VipsImage* decoded = image ? vips_image_copy_memory(image.get()) : nullptr;
        if (!decoded) {
            qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
            fail(file, unreadableMessage());
            continue;
        }
        parts.emplace_back(decoded);
        used << file;
    }
    if (parts.empty())
        return outcome;
    VipsRuntime::Image joined(static_cast<VipsImage*>(g_object_ref(parts.front().get())));
    for (size_t index = 1; index < parts.size(); ++index) {
        VipsArrayDouble* colour = transparent ? vips_array_double_newv(4, 0.0, 0.0, 0.0, 0.0)
                                              : vips_array_double_newv(3, shade, shade, shade);
        VipsImage* next = nullptr;
        const int result =
            vips_join(joined.get(), parts[index].get(), &next,
                      horizontal ? VIPS_DIRECTION_HORIZONTAL : VIPS_DIRECTION_VERTICAL, "expand", TRUE,
                      "shim", spacing, "background", colour, "align", VIPS_ALIGN_CENTRE, nullptr);
        vips_area_unref(VIPS_AREA(colour));
        if (result != 0) {
            qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
            for (const QString& file : std::as_const(used))
                outcome.failures.append(
                    {file, Localized("image-stitch.failed", "The images could not be joined.")});
            return outcome;
        }
        joined.reset(next);
    }
    const StepResult written = writeStep(
        joined.get(), format, saverOptions(format, 90, 6), outputDirectory,
        Localized("image-stitch.name", "%1 (stitched)").arg(ImageOutputFile::baseNameOf(used.first())),
        context, 0.5, 0.5, QString());
    if (written.cancelled) {
        outcome.cancelled = true;
    } else if (!written.failure.isEmpty()) {
        for (const QString& file : std::as_const(used))
            outcome.failures.append({file, written.failure});
    } else {
        outcome.outputFiles.append(written.output);
        context.reportProgress(1.0, QString());
    }
    return outcome;
}

OperationSettings ImageOperations::recognizeTextSettings()
{
    OperationSetting language{QStringLiteral("language"), Localized("text-recognition.language", "Language"),
                              OperationSetting::Type::choice, TextRecognizer::defaultLanguage()};
    for (const QString& code : TextRecognizer::installedLanguages())
        language.choices.append({code, TextRecognizer::languageTitle(code)});
    return {language};
}

FileOperationOutcome ImageOperations::recognizeText(const QStringList& files, const QVariantMap& values,
                                                    const QString&, const FileOperationContext& context)
{
    const QString language = stringValue(values, "language", TextRecognizer::defaultLanguage());
    QStringList texts;
    FileOperationOutcome outcome =
        forEachFile(files, context, [&](const QString& file, double start, double span) -> StepResult {
            if (!VipsRuntime::start())
                return {.failure = Localized("image-operation.no-vips", "Images cannot be processed here.")};
            const QByteArray name = QFile::encodeName(file);
            VipsImage* thumbnail = nullptr;
            // Turned upright by its orientation; only an image too large to be a page is shrunk.
            if (vips_thumbnail(name.constData(), &thumbnail, 10000, "height", 10000, "size", VIPS_SIZE_DOWN,
                               "fail_on", VIPS_FAIL_ON_TRUNCATED, nullptr) != 0) {
                qCWarning(lcFileOperations) << "libvips:" << VipsRuntime::takeError();
                return {.failure = unreadableMessage()};
            }
            VipsRuntime::Image image(thumbnail);
            const double recorded = vips_image_get_xres(image.get()) * 25.4;
            image = prepareFor(std::move(image), *formatNamed(QStringLiteral("jpeg")));
            auto pixels =
                image ? VipsRuntime::toQImage(image.get()) : std::unexpected(VipsRuntime::takeError());
            if (!pixels) {
                qCWarning(lcFileOperations) << "libvips:" << pixels.error();
                return {.failure = unreadableMessage()};
            }
            // Screenshots and photos say 72 dpi or nothing; tesseract does best told a page's usual 300.
            const int dotsPerInch = recorded >= 100 ? int(recorded) : 300;
            const auto text = TextRecognizer::recognize(*pixels, dotsPerInch, language, context, start, span,
                                                        QFileInfo(file).fileName());
            if (context.isCancelled())
                return {.cancelled = true};
            if (!text)
                return {.failure = text.error()};
            if (!text->isEmpty())
                texts << *text;
            return {};
        });
    if (!outcome.cancelled)
        outcome.text = texts.join(QStringLiteral("\n\n"));
    return outcome;
}

OperationSettings ImageOperations::imagesToPdfSettings()
{
    OperationSetting pageSize{QStringLiteral("pageSize"), Localized("image-pdf.page-size", "Page size"),
                              OperationSetting::Type::choice, QStringLiteral("fit")};
    pageSize.choices = {
        {QStringLiteral("fit"), Localized("image-pdf.page-size.fit", "The image's size")},
        {QStringLiteral("a4"), QStringLiteral("A4")},
        {QStringLiteral("letter"), Localized("image-pdf.page-size.letter", "Letter")},
    };
    return {pageSize};
}

FileOperationOutcome ImageOperations::imagesToPdf(const QStringList& files, const QVariantMap& values,
                                                  const QString& outputDirectory,
                                                  const FileOperationContext& context)
{
    const QString pageSize = stringValue(values, "pageSize", QStringLiteral("fit"));
    return ImagePdfWriter::write(files,
                                 pageSize == QLatin1String("a4")       ? ImagePdfWriter::PageSize::a4
                                 : pageSize == QLatin1String("letter") ? ImagePdfWriter::PageSize::letter
                                                                       : ImagePdfWriter::PageSize::fitImage,
                                 outputDirectory, context);
}

QList<std::pair<QString, QString>> ImageOperations::describeMetadata(const QString& path)
{
    auto rows = ImageMetadata::describe(path);
    const bool hasDimensions =
        !rows.isEmpty() && rows.first().first == Localized("image-metadata.dimensions", "Dimensions");
    if (!hasDimensions && VipsRuntime::start()) {
        VipsRuntime::Image header = VipsRuntime::load(path, true);
        if (header) {
            const bool swap = vips_image_get_orientation_swap(header.get());
            rows.prepend(
                {Localized("image-metadata.dimensions", "Dimensions"),
                 Localized("image-metadata.dimensions.value", "%1 × %2 pixels")
                     .arg(swap ? vips_image_get_height(header.get()) : vips_image_get_width(header.get()))
                     .arg(swap ? vips_image_get_width(header.get()) : vips_image_get_height(header.get()))});
        } else {
            VipsRuntime::takeError();
        }
    }
    return rows;
}

} // namespace Vantrope
