// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "TextRecognizer.h"

#include "FileOperationsLogging.h"
#include "Libraries/Core/Localized.h"

#include <dlfcn.h>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLocale>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>

namespace Vantrope {

namespace {

struct Watch {
    const FileOperationContext* context = nullptr;
    const tesseract::ETEXT_DESC* monitor = nullptr;
    double start = 0;
    double span = 1;
    QString title;
    int lastProgress = -1;
};

// Tesseract asks this between words; it is also where its progress is read.
bool cancelRecognition(void* data, int)
{
    auto* watch = static_cast<Watch*>(data);
    if (watch->context->isCancelled())
        return true;
    const int progress = watch->monitor->progress;
    if (progress != watch->lastProgress) {
        watch->lastProgress = progress;
        watch->context->reportProgress(watch->start + watch->span * progress / 100.0, watch->title);
    }
    return false;
}

// Tesseract asks OpenMP for several threads, which spin while they wait for each other: on a desktop busy
// with other work a page then takes several times as long as on one thread. With dynamic adjustment,
// OpenMP gives only as many threads as the load average leaves cores free. It is a setting of the
// calling thread, and is set there.
void fitOpenMpToLoad()
{
    using SetDynamic = void (*)(int);
    static const auto setDynamic = reinterpret_cast<SetDynamic>(dlsym(RTLD_DEFAULT, "omp_set_dynamic"));
    if (setDynamic)
        setDynamic(1);
}

} // namespace

QString TextRecognizer::dataDirectory()
{
    const QString prefix = qEnvironmentVariable("TESSDATA_PREFIX");
    if (!prefix.isEmpty())
        return QDir::cleanPath(prefix);
    for (const char* candidate : {"/usr/share/tesseract-ocr/5/tessdata",
                                  "/usr/share/tesseract-ocr/4.00/tessdata", "/usr/share/tessdata"})
        if (QDir(QString::fromLatin1(candidate)).exists())
            return QString::fromLatin1(candidate);
    return QStringLiteral("/usr/share/tesseract-ocr/5/tessdata");
}

QStringList TextRecognizer::installedLanguages()
{
    QStringList languages;
    const QStringList files =
        QDir(dataDirectory()).entryList({QStringLiteral("*.traineddata")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        const QString language = file.chopped(int(qstrlen(".traineddata")));
        // Orientation and script detection is no language to read.
        if (language != QLatin1String("osd") && language != QLatin1String("equ"))
            languages << language;
    }
    return languages;
}

QString TextRecognizer::defaultLanguage()
{
    const QStringList installed = installedLanguages();
    const QLocale locale;
    QString wanted = QLocale::languageToCode(locale.language(), QLocale::ISO639Part2T);
    if (locale.language() == QLocale::Chinese)
        wanted = locale.script() == QLocale::TraditionalChineseScript ? QStringLiteral("chi_tra")
                                                                      : QStringLiteral("chi_sim");
    if (installed.contains(wanted))
        return wanted;
    if (installed.contains(QStringLiteral("eng")) || installed.isEmpty())
        return QStringLiteral("eng");
    return installed.first();
}

QString TextRecognizer::languageTitle(const QString& language)
{
    const QString code = language.section(QLatin1Char('_'), 0, 0);
    const QLocale::Language known = QLocale::codeToLanguage(code, QLocale::ISO639Part2);
    if (known == QLocale::AnyLanguage || known == QLocale::C)
        return language;
    QString title = QLocale::languageToString(known);
    if (language == QLatin1String("chi_sim"))
        title += Localized("text-recognition.simplified", " (simplified)");
    else if (language == QLatin1String("chi_tra"))
        title += Localized("text-recognition.traditional", " (traditional)");
    return title;
}

std::expected<QString, QString> TextRecognizer::recognize(const QImage& image, int dotsPerInch,
                                                          const QString& language,
                                                          const FileOperationContext& context,
                                                          double progressStart, double progressSpan,
                                                          const QString& title)
{
    if (!installedLanguages().contains(language))
        return std::unexpected(
            Localized("text-recognition.no-language", "The language data for “%1” is not installed.")
                .arg(languageTitle(language)));
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    fitOpenMpToLoad();
    tesseract::TessBaseAPI api;
    const QByteArray directory = QFile::encodeName(dataDirectory());
    if (api.Init(directory.constData(), language.toUtf8().constData(), tesseract::OEM_DEFAULT) != 0)
        return std::unexpected(
            Localized("text-recognition.start-failed", "Text recognition could not start."));
    api.SetVariable("debug_file", "/dev/null");
    api.SetPageSegMode(tesseract::PSM_AUTO);
    api.SetImage(grey.constBits(), grey.width(), grey.height(), 1, int(grey.bytesPerLine()));
    api.SetSourceResolution(dotsPerInch);
    tesseract::ETEXT_DESC monitor;
    Watch watch{&context, &monitor, progressStart, progressSpan, title};
    monitor.cancel = cancelRecognition;
    monitor.cancel_this = &watch;
    const int result = api.Recognize(&monitor);
    if (context.isCancelled())
        return std::unexpected(QString());
    if (result != 0)
        return std::unexpected(Localized("text-recognition.failed", "The text could not be recognised."));
    std::unique_ptr<char[]> text(api.GetUTF8Text());
    api.End();
    return text ? QString::fromUtf8(text.get()).trimmed() : QString();
}

} // namespace Vantrope
