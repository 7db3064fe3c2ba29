// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "VipsRuntime.h"

#include "FileOperationsLogging.h"

#include <atomic>
#include <mutex>
#include <QFile>
#include <QImage>
#include <vips/vips.h>

namespace Vantrope {

namespace {

struct EvalWatch {
    const FileOperationContext* context = nullptr;
    double start = 0;
    double span = 1;
    QString title;
    std::atomic<bool> killed = false;
    std::atomic<int> lastPercent = -1;
};

void onEval(VipsImage* image, VipsProgress* progress, gpointer data)
{
    auto* watch = static_cast<EvalWatch*>(data);
    if (watch->killed)
        return; // vips reports a few more times while its threads wind down
    if (watch->context->isCancelled()) {
        watch->killed = true;
        vips_image_set_kill(image, TRUE);
        return;
    }
    const int percent = progress->percent;
    if (watch->lastPercent.exchange(percent) != percent)
        watch->context->reportProgress(watch->start + watch->span * percent / 100.0, watch->title);
}

void* collectSuffixes(GType type, void* a)
{
    auto* klass = static_cast<VipsForeignClass*>(g_type_class_ref(type));
    if (klass && klass->suffs) {
        auto* suffixes = static_cast<QStringList*>(a);
        for (const char* const* suffix = klass->suffs; *suffix; ++suffix) {
            const QString text = QString::fromUtf8(*suffix).toLower();
            if (!suffixes->contains(text))
                suffixes->append(text);
        }
    }
    return nullptr;
}

// libvips's own warnings (a damaged tile, a short file) go to this program's log, not to stderr.
void logVips(const gchar*, GLogLevelFlags level, const gchar* message, gpointer)
{
    if (level & (G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR))
        qCWarning(lcFileOperations) << "libvips:" << message;
    else
        qCDebug(lcFileOperations) << "libvips:" << message;
}

} // namespace

void VipsRuntime::Unref::operator()(VipsImage* image) const
{
    if (image)
        g_object_unref(image);
}

bool VipsRuntime::start()
{
    static std::once_flag once;
    static bool started = false;
    std::call_once(once, [] {
        started = vips_init("vantrope") == 0;
        if (!started) {
            qCWarning(lcFileOperations) << "libvips did not start:" << takeError();
            return;
        }
        g_log_set_handler("VIPS", GLogLevelFlags(G_LOG_LEVEL_MASK), logVips, nullptr);
        vips_cache_set_max(0);
        vips_leak_set(FALSE);
    });
    return started;
}

bool VipsRuntime::canSave(const QString& suffix)
{
    if (!start())
        return false;
    const QByteArray name = QByteArray("x") + suffix.toUtf8();
    const char* saver = vips_foreign_find_save(name.constData());
    vips_error_clear();
    return saver != nullptr;
}

QStringList VipsRuntime::loadableSuffixes()
{
    static const QStringList suffixes = [] {
        QStringList list;
        if (start()) {
            // Loaders of buffers and sources share their file loader's suffixes; all are asked.
            vips_type_map_all(g_type_from_name("VipsForeignLoad"), collectSuffixes, &list);
        }
        return list;
    }();
    return suffixes;
}

QString VipsRuntime::takeError()
{
    const QString text = QString::fromUtf8(vips_error_buffer()).trimmed();
    vips_error_clear();
    return text;
}

VipsRuntime::Image VipsRuntime::load(const QString& path, bool sequential)
{
    if (!start())
        return nullptr;
    const QByteArray name = QFile::encodeName(path);
    return Image(vips_image_new_from_file(name.constData(), "fail_on", VIPS_FAIL_ON_TRUNCATED, "access",
                                          sequential ? VIPS_ACCESS_SEQUENTIAL : VIPS_ACCESS_RANDOM, nullptr));
}

std::expected<void, QString> VipsRuntime::write(VipsImage* image, const QString& path, const QString& options,
                                                const FileOperationContext& context, double progressStart,
                                                double progressSpan, const QString& title, bool* cancelled)
{
    EvalWatch watch;
    watch.context = &context;
    watch.start = progressStart;
    watch.span = progressSpan;
    watch.title = title;
    vips_image_set_progress(image, TRUE);
    const gulong handler = g_signal_connect(image, "eval", G_CALLBACK(onEval), &watch);
    const QByteArray target = QFile::encodeName(path) + options.toUtf8();
    const int result = vips_image_write_to_file(image, target.constData(), nullptr);
    g_signal_handler_disconnect(image, handler);
    vips_image_set_progress(image, FALSE);
    if (cancelled)
        *cancelled = watch.killed || context.isCancelled();
    if (result != 0)
        return std::unexpected(takeError());
    return {};
}

std::expected<QImage, QString> VipsRuntime::toQImage(VipsImage* image)
{
    VipsImage* converted = nullptr;
    if (vips_colourspace(image, &converted, VIPS_INTERPRETATION_sRGB, nullptr) != 0)
        return std::unexpected(takeError());
    Image srgb(converted);
    VipsImage* cast = nullptr;
    if (vips_cast_uchar(srgb.get(), &cast, nullptr) != 0)
        return std::unexpected(takeError());
    Image eight(cast);
    // sRGB with alpha has four bands; anything past that is not shown.
    if (vips_image_get_bands(eight.get()) > 4) {
        VipsImage* trimmed = nullptr;
        if (vips_extract_band(eight.get(), &trimmed, 0, "n", 4, nullptr) != 0)
            return std::unexpected(takeError());
        eight.reset(trimmed);
    }
    const int bands = vips_image_get_bands(eight.get());
    size_t size = 0;
    void* data = vips_image_write_to_memory(eight.get(), &size);
    if (!data)
        return std::unexpected(takeError());
    const int width = vips_image_get_width(eight.get());
    const int height = vips_image_get_height(eight.get());
    QImage result(static_cast<uchar*>(data), width, height, qsizetype(width) * bands,
                  bands == 4 ? QImage::Format_RGBA8888 : QImage::Format_RGB888, g_free, data);
    return result;
}

} // namespace Vantrope
