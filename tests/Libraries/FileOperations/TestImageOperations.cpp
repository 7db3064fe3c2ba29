// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/FileOperations/ImageOperations.h"

#include <functional>
#include <mutex>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QImage>
#include <QImageReader>
#include <QLocale>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <sys/mount.h>
#include <thread>
#include <vips/vips.h>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

using Operation = std::function<FileOperationOutcome(const QStringList&, const QVariantMap&, const QString&,
                                                     const FileOperationContext&)>;

QString run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
}

// Left half red, right half blue: which way the picture was turned can be read from its pixels.
QImage halves(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, width / 2, height, Qt::red);
    painter.fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    return image;
}

QString save(const QImage& image, const QString& path)
{
    return image.save(path, nullptr, 95) ? path : QString();
}

QSize sizeOf(const QString& path)
{
    return QImageReader(path).size();
}

bool isRed(QRgb pixel)
{
    return qRed(pixel) > 200 && qBlue(pixel) < 60;
}

bool isBlue(QRgb pixel)
{
    return qBlue(pixel) > 200 && qRed(pixel) < 60;
}

// The bytes from a JPEG's first start-of-scan marker to its end: the compressed image data.
QByteArray scanData(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray data = file.readAll();
    qsizetype position = 2;
    while (position + 4 <= data.size() && uchar(data[position]) == 0xFF) {
        const uchar marker = uchar(data[position + 1]);
        if (marker == 0xDA)
            return data.mid(position);
        const int length = (uchar(data[position + 2]) << 8) | uchar(data[position + 3]);
        position += 2 + length;
    }
    return {};
}

long peakResidentKilobytes()
{
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QString text = QString::fromLatin1(status.readAll());
    const auto match = QRegularExpression(u"VmHWM:\\s*(\\d+)"_s).match(text);
    return match.hasMatch() ? match.captured(1).toLong() : -1;
}

} // namespace

class TestImageOperations final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void hugeImageResizesInLittleMemory();
    void resize_data();
    void resize();
    void outputsAreTurnedByOrientation_data();
    void outputsAreTurnedByOrientation();
    void convert_data();
    void convert();
    void convertPutsTransparencyOnWhite();
    void compress_data();
    void compress();
    void badFilesFailAloneByName_data();
    void badFilesFailAloneByName();
    void takenNamesAreNeverReplaced();
    void unwritableFolderFailsEveryFile();
    void fullDiskFailsTheFileThatDoesNotFit();
    void progressRisesToTheEnd();
    void cancelLeavesNothing_data();
    void cancelLeavesNothing();
    void concurrentRunsDoNotMix();
    void stripMetadata_data();
    void stripMetadata();
    void describeMetadata();
    void recognizeText();
    void recognitionLanguages_data();
    void recognitionLanguages();
    void imagesToPdf_data();
    void imagesToPdf();
    void stitch_data();
    void stitch();
    void canRead_data();
    void canRead();

private:
    QString path(const QString& name) const { return m_inputs->filePath(name); }
    QString jpegWithLocation(const QString& name);

    std::unique_ptr<QTemporaryDir> m_inputs;
    std::unique_ptr<QTemporaryDir> m_outputs;
};

void TestImageOperations::initTestCase()
{
    for (const char* tool : {"exiv2", "file", "pdfinfo"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty())
            QSKIP(qPrintable(u"%1 is not installed (scripts/deps.sh test)"_s.arg(QString::fromLatin1(tool))));
}

void TestImageOperations::init()
{
    m_inputs = std::make_unique<QTemporaryDir>();
    m_outputs = std::make_unique<QTemporaryDir>();
    QVERIFY(m_inputs->isValid() && m_outputs->isValid());
}

QString TestImageOperations::jpegWithLocation(const QString& name)
{
    const QString file = save(halves(640, 480), path(name));
    const QString output =
        run(u"exiv2"_s,
            {u"-M"_s + u"set Exif.Image.Make Canon"_s, u"-M"_s + u"set Exif.Image.Model Canon EOS 80D"_s,
             u"-M"_s + u"set Exif.Photo.DateTimeOriginal 2024:05:17 14:03:22"_s,
             u"-M"_s + u"set Exif.Image.Orientation 1"_s, u"-M"_s + u"set Exif.GPSInfo.GPSLatitudeRef N"_s,
             u"-M"_s + u"set Exif.GPSInfo.GPSLatitude 48/1 51/1 30/1"_s,
             u"-M"_s + u"set Exif.GPSInfo.GPSLongitudeRef E"_s,
             u"-M"_s + u"set Exif.GPSInfo.GPSLongitude 2/1 21/1 0/1"_s, file});
    return run(u"exiv2"_s, {u"-pa"_s, file}).contains(u"GPSLatitude"_s) ? file : QString();
}

// 20,000 x 20,000 pixels are 1.2 GB decoded; shrinking while loading keeps far below that.
void TestImageOperations::hugeImageResizesInLittleMemory()
{
    QVERIFY(VIPS_INIT("TestImageOperations") == 0);
    VipsImage* black = nullptr;
    QVERIFY(vips_black(&black, 20000, 20000, "bands", 3, nullptr) == 0);
    VipsImage* grey = nullptr;
    QVERIFY(vips_linear1(black, &grey, 1.0, 90.0, "uchar", TRUE, nullptr) == 0);
    g_object_unref(black);
    const QByteArray huge = QFile::encodeName(path(u"huge.jpg"_s));
    QVERIFY(vips_image_write_to_file(grey, huge.constData(), nullptr) == 0);
    g_object_unref(grey);
    // Resets the peak resident size so only the resize counts (Linux's clear_refs).
    QFile clear(u"/proc/self/clear_refs"_s);
    QVERIFY(clear.open(QIODevice::WriteOnly) && clear.write("5") == 1);
    clear.close();
    const auto outcome = ImageOperations::resize(
        {path(u"huge.jpg"_s)}, {{u"mode"_s, u"longSide"_s}, {u"size"_s, 1600}}, m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles.size(), 1);
    QCOMPARE(sizeOf(outcome.outputFiles.first()), QSize(1600, 1600));
    const long peak = peakResidentKilobytes();
    QVERIFY(peak > 0);
    qInfo("Peak resident memory while resizing: %ld MB", peak / 1024);
    QVERIFY2(peak < 300 * 1024, qPrintable(u"peak resident %1 MB"_s.arg(peak / 1024)));
}

void TestImageOperations::resize_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("enlarge");
    QTest::addColumn<QSize>("source");
    QTest::addColumn<QSize>("expected");
    QTest::addColumn<QString>("name");
    QTest::newRow("long side, landscape")
        << u"longSide"_s << 600 << false << QSize(1200, 800) << QSize(600, 400) << u"photo (600x400).jpg"_s;
    QTest::newRow("long side, portrait")
        << u"longSide"_s << 600 << false << QSize(800, 1200) << QSize(400, 600) << u"photo (400x600).jpg"_s;
    QTest::newRow("width") << u"width"_s << 300 << false << QSize(1200, 800) << QSize(300, 200)
                           << u"photo (300x200).jpg"_s;
    QTest::newRow("height") << u"height"_s << 300 << false << QSize(1200, 800) << QSize(450, 300)
                            << u"photo (450x300).jpg"_s;
    QTest::newRow("percent") << u"percent"_s << 25 << false << QSize(1200, 800) << QSize(300, 200)
                             << u"photo (300x200).jpg"_s;
    QTest::newRow("never enlarged") << u"longSide"_s << 1600 << false << QSize(400, 300) << QSize(400, 300)
                                    << u"photo (400x300).jpg"_s;
    QTest::newRow("enlarged when asked")
        << u"longSide"_s << 800 << true << QSize(400, 300) << QSize(800, 600) << u"photo (800x600).jpg"_s;
    QTest::newRow("enlarged past what is sane")
        << u"percent"_s << 10000 << true << QSize(400, 300) << QSize() << QString();
}

void TestImageOperations::resize()
{
    QFETCH(QString, mode);
    QFETCH(int, size);
    QFETCH(bool, enlarge);
    QFETCH(QSize, source);
    QFETCH(QSize, expected);
    QFETCH(QString, name);
    const QString input = save(halves(source.width(), source.height()), path(u"photo.jpg"_s));
    const auto outcome = ImageOperations::resize(
        {input}, {{u"mode"_s, mode}, {u"size"_s, size}, {u"enlarge"_s, enlarge}}, m_outputs->path(), {});
    if (!expected.isValid()) {
        QCOMPARE(outcome.failures.size(), 1);
        QVERIFY(outcome.failures.first().message.contains(u"megapixels"_s));
        QCOMPARE(QDir(m_outputs->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
        return;
    }
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(name)});
    QCOMPARE(sizeOf(outcome.outputFiles.first()), expected);
    const QImage result(outcome.outputFiles.first());
    QVERIFY(isRed(result.pixel(expected.width() / 4, expected.height() / 2)));
    QVERIFY(isBlue(result.pixel(expected.width() * 3 / 4, expected.height() / 2)));
}

// A camera held upright stores the picture on its side and says so in the EXIF orientation; what is
// written is upright in its pixels, since not every format keeps the orientation.
void TestImageOperations::outputsAreTurnedByOrientation_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("resize") << u"resize"_s << QSize(200, 300);
    QTest::newRow("convert to PNG") << u"convert"_s << QSize(400, 600);
    QTest::newRow("compress") << u"compress"_s << QSize(400, 600);
    QTest::newRow("get info") << u"describe"_s << QSize(400, 600);
}

void TestImageOperations::outputsAreTurnedByOrientation()
{
    QFETCH(QString, operation);
    QFETCH(QSize, expected);
    const QString input = save(halves(600, 400), path(u"upright.jpg"_s));
    run(u"exiv2"_s, {u"-M"_s + u"set Exif.Image.Orientation 6"_s, input});
    QVERIFY(run(u"exiv2"_s, {u"-pa"_s, input}).contains(u"right, top"_s));
    if (operation == u"describe"_s) {
        const auto rows = ImageOperations::describeMetadata(input);
        QVERIFY(!rows.isEmpty());
        QCOMPARE(rows.first().second, u"%1 × %2 pixels"_s.arg(expected.width()).arg(expected.height()));
        return;
    }
    FileOperationOutcome outcome;
    if (operation == u"resize"_s)
        outcome = ImageOperations::resize({input}, {{u"mode"_s, u"longSide"_s}, {u"size"_s, 300}},
                                          m_outputs->path(), {});
    else if (operation == u"convert"_s)
        outcome = ImageOperations::convert({input}, {{u"format"_s, u"png"_s}, {u"quality"_s, 90}},
                                           m_outputs->path(), {});
    else
        outcome = ImageOperations::compress({input}, {{u"quality"_s, 80}, {u"pngCompression"_s, 6}},
                                            m_outputs->path(), {});
    QCOMPARE(outcome.outputFiles.size(), 1);
    QImageReader reader(outcome.outputFiles.first());
    reader.setAutoTransform(false); // the pixels themselves must be upright now
    const QImage result = reader.read();
    QCOMPARE(result.size(), expected);
    // Turned a quarter clockwise, the left (red) half is on top.
    QVERIFY(isRed(result.pixel(expected.width() / 2, expected.height() / 5)));
    QVERIFY(isBlue(result.pixel(expected.width() / 2, expected.height() * 4 / 5)));
}

void TestImageOperations::convert_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("fileSays");
    const QHash<QString, std::pair<QString, QString>> known = {
        {u"png"_s, {u".png"_s, u"PNG image data"_s}}, {u"jpeg"_s, {u".jpg"_s, u"JPEG image data"_s}},
        {u"webp"_s, {u".webp"_s, u"Web/P image"_s}},  {u"tiff"_s, {u".tif"_s, u"TIFF image data"_s}},
        {u"heif"_s, {u".heic"_s, u"HEIF Image"_s}},   {u"avif"_s, {u".avif"_s, u"AVIF Image"_s}},
    };
    const OperationSetting format = ImageOperations::convertSettings().first();
    QCOMPARE(format.key, u"format"_s);
    for (const QString& required : {u"png"_s, u"jpeg"_s, u"webp"_s, u"tiff"_s})
        QVERIFY2(
            std::ranges::any_of(format.choices, [&](const auto& choice) { return choice.value == required; }),
            qPrintable(required));
    for (const auto& choice : format.choices) {
        QVERIFY2(known.contains(choice.value), qPrintable(choice.value));
        QTest::newRow(qPrintable(choice.value))
            << choice.value << known[choice.value].first << known[choice.value].second;
    }
}

void TestImageOperations::convert()
{
    QFETCH(QString, format);
    QFETCH(QString, suffix);
    QFETCH(QString, fileSays);
    const QString input = save(halves(320, 200), path(u"photo.png"_s));
    const auto outcome =
        ImageOperations::convert({input}, {{u"format"_s, format}, {u"quality"_s, 85}}, m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(u"photo"_s + suffix)});
    const QString output = outcome.outputFiles.first();
    QVERIFY2(run(u"file"_s, {u"-b"_s, output}).contains(fileSays),
             qPrintable(run(u"file"_s, {u"-b"_s, output})));
    QImageReader reader(output);
    if (format == u"heif"_s || format == u"avif"_s) {
        if (!QImageReader::supportedImageFormats().contains(format.toLatin1()))
            return; // Qt reads these only with the KDE image format plugins
    }
    const QImage result = reader.read();
    QVERIFY2(!result.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(result.size(), QSize(320, 200));
    QVERIFY(isRed(result.pixel(40, 100)));
    QVERIFY(isBlue(result.pixel(280, 100)));
}

void TestImageOperations::convertPutsTransparencyOnWhite()
{
    QImage clear(100, 100, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    const QString input = save(clear, path(u"clear.png"_s));
    const auto outcome = ImageOperations::convert({input}, {{u"format"_s, u"jpeg"_s}, {u"quality"_s, 90}},
                                                  m_outputs->path(), {});
    QCOMPARE(outcome.outputFiles.size(), 1);
    QCOMPARE(QImage(outcome.outputFiles.first()).pixelColor(50, 50).lightness(), 255);
}

void TestImageOperations::compress_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("lossless");
    QTest::newRow("jpeg") << u"photo.jpg"_s << false;
    QTest::newRow("webp") << u"photo.webp"_s << false;
    QTest::newRow("png") << u"photo.png"_s << true;
}

void TestImageOperations::compress()
{
    QFETCH(QString, name);
    QFETCH(bool, lossless);
    // A smooth gradient with some detail: what photos look like to an encoder.
    QImage image(800, 600, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / 800, y * 255 / 600, (x * y / 7) % 256));
    const QString input = path(name);
    QVERIFY(image.save(input, nullptr, 100));
    const auto outcome = ImageOperations::compress({input}, {{u"quality"_s, 40}, {u"pngCompression"_s, 9}},
                                                   m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(name)});
    const QString output = outcome.outputFiles.first();
    QCOMPARE(QImageReader(output).format(), QImageReader(input).format());
    if (lossless) {
        QCOMPARE(QImage(output).convertToFormat(QImage::Format_RGB32),
                 QImage(input).convertToFormat(QImage::Format_RGB32));
        QVERIFY(QFileInfo(output).size() <= QFileInfo(input).size());
    } else {
        QVERIFY2(QFileInfo(output).size() < QFileInfo(input).size() / 2,
                 qPrintable(u"%1 -> %2"_s.arg(QFileInfo(input).size()).arg(QFileInfo(output).size())));
    }
}

void TestImageOperations::badFilesFailAloneByName_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("damage");
    QTest::addColumn<int>("outputs");
    QTest::addColumn<bool>("fails");
    const QList<std::pair<QString, int>> operations = {{u"resize"_s, 2},   {u"convert"_s, 2},
                                                       {u"compress"_s, 2}, {u"strip"_s, 2},
                                                       {u"stitch"_s, 1},   {u"pdf"_s, 1}};
    for (const auto& [operation, outputs] : operations)
        for (const QString& damage : {u"truncated"_s, u"garbage"_s, u"missing"_s})
            // Metadata is removed without decoding the image, so a truncated JPEG is copied as truncated as
            // it was.
            QTest::addRow("%s, %s", qPrintable(operation), qPrintable(damage))
                << operation << damage << outputs + (operation == u"strip"_s && damage == u"truncated"_s)
                << !(operation == u"strip"_s && damage == u"truncated"_s);
}

void TestImageOperations::badFilesFailAloneByName()
{
    QFETCH(QString, operation);
    QFETCH(QString, damage);
    QFETCH(int, outputs);
    QFETCH(bool, fails);
    const QHash<QString, std::pair<Operation, QVariantMap>> operations = {
        {u"resize"_s, {ImageOperations::resize, {{u"mode"_s, u"longSide"_s}, {u"size"_s, 200}}}},
        {u"convert"_s, {ImageOperations::convert, {{u"format"_s, u"png"_s}, {u"quality"_s, 90}}}},
        {u"compress"_s, {ImageOperations::compress, {{u"quality"_s, 60}, {u"pngCompression"_s, 6}}}},
        {u"strip"_s, {ImageOperations::stripMetadata, {{u"remove"_s, u"all"_s}}}},
        {u"stitch"_s,
         {ImageOperations::stitch,
          {{u"direction"_s, u"horizontal"_s},
           {u"spacing"_s, 0},
           {u"background"_s, u"white"_s},
           {u"format"_s, u"png"_s}}}},
        {u"pdf"_s, {ImageOperations::imagesToPdf, {{u"pageSize"_s, u"a4"_s}}}},
    };
    const QString first = save(halves(400, 300), path(u"first.jpg"_s));
    const QString last = save(halves(300, 400), path(u"last.jpg"_s));
    const QString bad = path(u"bad.jpg"_s);
    if (damage != u"missing"_s) {
        QFile source(first);
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray whole = source.readAll();
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        if (damage == u"truncated"_s)
            file.write(whole.left(whole.size() / 2));
        else
            file.write(QByteArray(4096, 'x'));
    }
    const auto& [run, values] = operations[operation];
    const auto outcome = run({first, bad, last}, values, m_outputs->path(), {});
    QCOMPARE(outcome.failures.size(), fails ? 1 : 0);
    if (fails) {
        QCOMPARE(outcome.failures.first().path, bad);
        QVERIFY(!outcome.failures.first().message.isEmpty());
    }
    QCOMPARE(outcome.outputFiles.size(), outputs);
    for (const QString& output : outcome.outputFiles)
        QVERIFY(QFileInfo(output).size() > 0);
    if (operation == u"pdf"_s)
        QVERIFY(::run(u"pdfinfo"_s, {outcome.outputFiles.first()})
                    .contains(QRegularExpression(u"Pages:\\s+2\\n"_s)));
    if (operation == u"stitch"_s)
        QCOMPARE(sizeOf(outcome.outputFiles.first()), QSize(400 + 225, 300));
    // Nothing else was left in the output folder, such as a half-written file.
    QCOMPARE(QDir(m_outputs->path()).entryList(QDir::Files | QDir::Hidden).size(), outputs);
}

void TestImageOperations::takenNamesAreNeverReplaced()
{
    const QString input = save(halves(200, 100), path(u"photo.png"_s));
    const QByteArray original = [&] {
        QFile file(input);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    const QVariantMap values = {{u"format"_s, u"png"_s}, {u"quality"_s, 90}};
    // Written into the input's own folder, twice.
    const auto once = ImageOperations::convert({input}, values, m_inputs->path(), {});
    const auto twice = ImageOperations::convert({input}, values, m_inputs->path(), {});
    QCOMPARE(once.outputFiles, QStringList{path(u"photo 2.png"_s)});
    QCOMPARE(twice.outputFiles, QStringList{path(u"photo 3.png"_s)});
    QFile file(input);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), original);
}

void TestImageOperations::unwritableFolderFailsEveryFile()
{
    // A folder cannot be made inside a file, even by root, as these tests may run.
    const QString blocker = save(halves(10, 10), path(u"blocker.png"_s));
    const QStringList files = {save(halves(100, 80), path(u"a.png"_s)),
                               save(halves(100, 80), path(u"b.png"_s))};
    const auto outcome = ImageOperations::convert(files, {{u"format"_s, u"jpeg"_s}, {u"quality"_s, 80}},
                                                  blocker + u"/out"_s, {});
    QVERIFY(outcome.outputFiles.isEmpty());
    QCOMPARE(outcome.failures.size(), 2);
    QCOMPARE(outcome.failures.at(0).path, files.at(0));
    QCOMPARE(outcome.failures.at(1).path, files.at(1));
    QVERIFY(outcome.failures.at(0).message.contains(u"/out"_s));
}

void TestImageOperations::fullDiskFailsTheFileThatDoesNotFit()
{
    const QString disk = m_outputs->filePath(u"disk"_s);
    QVERIFY(QDir().mkpath(disk));
    if (::mount("tmpfs", QFile::encodeName(disk).constData(), "tmpfs", 0, "size=1m") != 0)
        QSKIP("a small tmpfs cannot be mounted here (needs root)");
    const auto unmount = qScopeGuard([&] { ::umount2(QFile::encodeName(disk).constData(), MNT_DETACH); });
    QImage noise(1200, 1000, QImage::Format_RGB32);
    quint32 state = 7;
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, (state = state * 1664525u + 1013904223u) >> 8);
    const QString big = save(noise, path(u"noise.png"_s));
    const QString small = save(halves(100, 80), path(u"small.png"_s));
    const auto outcome =
        ImageOperations::convert({big, small}, {{u"format"_s, u"png"_s}, {u"quality"_s, 90}}, disk, {});
    QCOMPARE(outcome.failures.size(), 1);
    QCOMPARE(outcome.failures.first().path, big);
    QVERIFY2(outcome.failures.first().message.contains(u"no space"_s),
             qPrintable(outcome.failures.first().message));
    QCOMPARE(outcome.outputFiles, QStringList{disk + u"/small.png"_s});
    QCOMPARE(QDir(disk).entryList(QDir::Files | QDir::Hidden), QStringList{u"small.png"_s});
}

void TestImageOperations::progressRisesToTheEnd()
{
    const QStringList files = {save(halves(2000, 1500), path(u"one.png"_s)),
                               save(halves(2000, 1500), path(u"two.png"_s))};
    QList<double> fractions;
    QStringList titles;
    std::mutex mutex;
    FileOperationContext context;
    context.reportProgress = [&](double fraction, const QString& title) {
        std::lock_guard lock(mutex);
        fractions << fraction;
        titles << title;
    };
    const auto outcome = ImageOperations::convert(files, {{u"format"_s, u"webp"_s}, {u"quality"_s, 80}},
                                                  m_outputs->path(), context);
    QCOMPARE(outcome.outputFiles.size(), 2);
    QVERIFY(fractions.size() >= 3);
    QVERIFY(std::ranges::is_sorted(fractions));
    QCOMPARE(fractions.first(), 0.0);
    QCOMPARE(fractions.last(), 1.0);
    QVERIFY(titles.contains(u"one.png"_s) && titles.contains(u"two.png"_s));
}

void TestImageOperations::cancelLeavesNothing_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("checksBeforeCancel");
    QTest::newRow("convert, before the first file") << u"convert"_s << 0;
    QTest::newRow("convert, between files") << u"convert"_s << 1;
    QTest::newRow("convert, while writing") << u"convert"_s << 4;
    QTest::newRow("pdf, between pages") << u"pdf"_s << 2;
    QTest::newRow("stitch, while writing") << u"stitch"_s << 6;
    QTest::newRow("text, while reading") << u"text"_s << 4;
}

void TestImageOperations::cancelLeavesNothing()
{
    QFETCH(QString, operation);
    QFETCH(int, checksBeforeCancel);
    QStringList files;
    if (operation == u"text"_s) {
        QImage page(2480, 1200, QImage::Format_RGB32);
        page.fill(Qt::white);
        QPainter painter(&page);
        QFont font(u"DejaVu Sans"_s);
        font.setPixelSize(40);
        painter.setFont(font);
        painter.drawText(page.rect().adjusted(100, 100, -100, -100), Qt::TextWordWrap,
                         u"Many words on a page give the recogniser many places to stop. "_s.repeated(20));
        painter.end();
        files << save(page, path(u"page.png"_s));
    } else {
        for (int index = 0; index < 3; ++index)
            files << save(halves(3000, 2000), path(u"photo %1.png"_s.arg(index)));
    }
    std::atomic<int> checks = 0;
    FileOperationContext context;
    context.isCancelled = [&] { return checks++ >= checksBeforeCancel; };
    FileOperationOutcome outcome;
    if (operation == u"convert"_s)
        outcome = ImageOperations::convert(files, {{u"format"_s, u"webp"_s}, {u"quality"_s, 80}},
                                           m_outputs->path(), context);
    else if (operation == u"pdf"_s)
        outcome = ImageOperations::imagesToPdf(files, {{u"pageSize"_s, u"a4"_s}}, m_outputs->path(), context);
    else if (operation == u"stitch"_s)
        outcome = ImageOperations::stitch(files,
                                          {{u"direction"_s, u"vertical"_s},
                                           {u"spacing"_s, 0},
                                           {u"background"_s, u"white"_s},
                                           {u"format"_s, u"png"_s}},
                                          m_outputs->path(), context);
    else
        outcome =
            ImageOperations::recognizeText(files, {{u"language"_s, u"eng"_s}}, m_outputs->path(), context);
    QVERIFY(outcome.cancelled);
    // The work stopped when told, rather than running on and asking again at every step.
    QVERIFY2(checks < checksBeforeCancel + 10, qPrintable(u"asked %1 times"_s.arg(checks.load())));
    QVERIFY(outcome.outputFiles.isEmpty());
    QVERIFY(outcome.text.isEmpty());
    QCOMPARE(QDir(m_outputs->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestImageOperations::concurrentRunsDoNotMix()
{
    const QStringList first = {save(halves(1200, 800), path(u"a.png"_s)),
                               save(halves(800, 1200), path(u"b.jpg"_s))};
    const QStringList second = {save(halves(900, 600), path(u"c.png"_s)),
                                save(halves(600, 900), path(u"d.jpg"_s))};
    const QString bad = path(u"bad.png"_s);
    QFile garbage(bad);
    QVERIFY(garbage.open(QIODevice::WriteOnly) && garbage.write(QByteArray(64, 'q')) == 64);
    garbage.close();
    FileOperationOutcome resized;
    FileOperationOutcome converted;
    std::thread one([&] {
        resized =
            ImageOperations::resize(first + QStringList{bad}, {{u"mode"_s, u"width"_s}, {u"size"_s, 300}},
                                    m_outputs->filePath(u"one"_s), {});
    });
    std::thread two([&] {
        converted = ImageOperations::convert(second, {{u"format"_s, u"webp"_s}, {u"quality"_s, 70}},
                                             m_outputs->filePath(u"two"_s), {});
    });
    one.join();
    two.join();
    QCOMPARE(resized.outputFiles.size(), 2);
    QCOMPARE(resized.failures.size(), 1);
    QCOMPARE(resized.failures.first().path, bad);
    QCOMPARE(sizeOf(resized.outputFiles.at(0)), QSize(300, 200));
    QCOMPARE(sizeOf(resized.outputFiles.at(1)), QSize(300, 450));
    QVERIFY(converted.failures.isEmpty());
    QCOMPARE(converted.outputFiles.size(), 2);
    QCOMPARE(sizeOf(converted.outputFiles.at(1)), QSize(600, 900));
}

void TestImageOperations::stripMetadata_data()
{
    QTest::addColumn<QString>("remove");
    QTest::addColumn<bool>("cameraKept");
    QTest::newRow("all") << u"all"_s << false;
    QTest::newRow("location") << u"location"_s << true;
}

void TestImageOperations::stripMetadata()
{
    QFETCH(QString, remove);
    QFETCH(bool, cameraKept);
    const QString input = jpegWithLocation(u"trip.jpg"_s);
    QVERIFY(!input.isEmpty());
    const auto outcome =
        ImageOperations::stripMetadata({input}, {{u"remove"_s, remove}}, m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(u"trip.jpg"_s)});
    const QString output = outcome.outputFiles.first();
    const QString tags = run(u"exiv2"_s, {u"-pa"_s, output});
    QVERIFY2(!tags.contains(u"GPS"_s), qPrintable(tags));
    QCOMPARE(tags.contains(u"Canon EOS 80D"_s), cameraKept);
    QVERIFY(tags.contains(u"Exif.Image.Orientation"_s));
    // The original keeps everything.
    QVERIFY(run(u"exiv2"_s, {u"-pa"_s, input}).contains(u"GPSLatitude"_s));
    // Not encoded again: the compressed scans are the same bytes, and so are the pixels.
    QVERIFY(!scanData(input).isEmpty());
    QCOMPARE(scanData(output), scanData(input));
    QCOMPARE(QImage(output), QImage(input));
}

void TestImageOperations::describeMetadata()
{
    const QString input = jpegWithLocation(u"trip.jpg"_s);
    QVERIFY(!input.isEmpty());
    QMap<QString, QString> rows;
    for (const auto& [title, value] : ImageOperations::describeMetadata(input))
        rows.insert(title, value);
    QCOMPARE(rows.value(u"Dimensions"_s), u"640 × 480 pixels"_s);
    QCOMPARE(rows.value(u"Camera"_s), u"Canon EOS 80D"_s);
    QVERIFY(rows.value(u"Date taken"_s).contains(u"2024"_s));
    QVERIFY2(rows.value(u"Location"_s).startsWith(u"Present (48.85833, 2.35000)"_s),
             qPrintable(rows.value(u"Location"_s)));
    const auto stripped =
        ImageOperations::stripMetadata({input}, {{u"remove"_s, u"location"_s}}, m_outputs->path(), {});
    QCOMPARE(stripped.outputFiles.size(), 1);
    rows.clear();
    for (const auto& [title, value] : ImageOperations::describeMetadata(stripped.outputFiles.first()))
        rows.insert(title, value);
    QCOMPARE(rows.value(u"Location"_s), u"None"_s);
    QCOMPARE(rows.value(u"Camera"_s), u"Canon EOS 80D"_s);
}

void TestImageOperations::recognizeText()
{
    const OperationSetting language = ImageOperations::recognizeTextSettings().first();
    QVERIFY(
        std::ranges::any_of(language.choices, [](const auto& choice) { return choice.value == u"eng"_s; }));
    QVERIFY(
        std::ranges::none_of(language.choices, [](const auto& choice) { return choice.value == u"osd"_s; }));
    QImage page(2000, 400, QImage::Format_RGB32);
    page.fill(Qt::white);
    {
        QPainter painter(&page);
        QFont font(u"DejaVu Sans"_s);
        font.setPixelSize(64);
        painter.setFont(font);
        painter.setPen(Qt::black);
        painter.drawText(QRect(60, 0, 1900, 400), Qt::AlignVCenter, u"Shelves keep seven yellow parcels"_s);
    }
    const QString scan = save(page, path(u"scan.png"_s));
    const QString bad = path(u"broken.png"_s);
    QFile broken(bad);
    QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write(QByteArray(100, 'z')) == 100);
    broken.close();
    const auto outcome =
        ImageOperations::recognizeText({scan, bad}, {{u"language"_s, u"eng"_s}}, m_outputs->path(), {});
    QCOMPARE(outcome.text, u"Shelves keep seven yellow parcels"_s);
    QVERIFY(outcome.outputFiles.isEmpty());
    QCOMPARE(outcome.failures.size(), 1);
    QCOMPARE(outcome.failures.first().path, bad);
    QCOMPARE(QDir(m_outputs->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void TestImageOperations::recognitionLanguages_data()
{
    QTest::addColumn<QStringList>("installed");
    QTest::addColumn<QLocale::Language>("locale");
    QTest::addColumn<QString>("expectedDefault");
    QTest::newRow("the locale's language installed")
        << QStringList{u"eng"_s, u"deu"_s} << QLocale::German << u"deu"_s;
    QTest::newRow("the locale's language missing")
        << QStringList{u"eng"_s, u"fra"_s} << QLocale::German << u"eng"_s;
    QTest::newRow("neither") << QStringList{u"spa"_s, u"fra"_s} << QLocale::German << u"fra"_s;
}

// The languages offered are the data files in tesseract's folder; these are copies of the English data
// under other names, which is all the choice looks at.
void TestImageOperations::recognitionLanguages()
{
    QFETCH(QStringList, installed);
    QFETCH(QLocale::Language, locale);
    QFETCH(QString, expectedDefault);
    const QString english = u"/usr/share/tesseract-ocr/5/tessdata/eng.traineddata"_s;
    if (!QFile::exists(english))
        QSKIP("tesseract-ocr-eng is not installed (scripts/deps.sh test)");
    const QString data = m_inputs->filePath(u"tessdata"_s);
    QVERIFY(QDir().mkpath(data));
    for (const QString& language : installed)
        QVERIFY(QFile::link(english, data + u"/%1.traineddata"_s.arg(language)));
    QVERIFY(QFile::link(english, data + u"/osd.traineddata"_s));
    const QByteArray previousPrefix = qgetenv("TESSDATA_PREFIX");
    qputenv("TESSDATA_PREFIX", QFile::encodeName(data));
    QLocale::setDefault(QLocale(locale));
    const auto restore = qScopeGuard([&] {
        QLocale::setDefault(QLocale::c());
        if (previousPrefix.isEmpty())
            qunsetenv("TESSDATA_PREFIX");
        else
            qputenv("TESSDATA_PREFIX", previousPrefix);
    });
    const OperationSetting language = ImageOperations::recognizeTextSettings().first();
    QStringList offered;
    for (const auto& choice : language.choices)
        offered << choice.value;
    QStringList expected = installed;
    expected.sort();
    QCOMPARE(offered, expected);
    QCOMPARE(language.defaultValue.toString(), expectedDefault);
    // A language that is not installed is refused by name rather than crashing tesseract.
    const QString scan = save(halves(200, 100), path(u"scan.png"_s));
    const auto outcome =
        ImageOperations::recognizeText({scan}, {{u"language"_s, u"ita"_s}}, m_outputs->path(), {});
    QCOMPARE(outcome.failures.size(), 1);
    QVERIFY2(outcome.failures.first().message.contains(u"Italian"_s),
             qPrintable(outcome.failures.first().message));
}

void TestImageOperations::imagesToPdf_data()
{
    QTest::addColumn<QString>("pageSize");
    QTest::addColumn<QStringList>("pageSizes"); // as pdfinfo prints them, page by page
    // 300 x 200 pixels at 150 dpi are 144 x 96 points.
    QTest::newRow("fit") << u"fit"_s << QStringList{u"144 x 96 pts"_s, u"96 x 144 pts"_s, u"144 x 96 pts"_s};
    // Paper turns with the picture.
    QTest::newRow("a4") << u"a4"_s
                        << QStringList{u"842 x 595 pts (A4)"_s, u"595 x 842 pts (A4)"_s,
                                       u"842 x 595 pts (A4)"_s};
    QTest::newRow("letter") << u"letter"_s
                            << QStringList{u"792 x 612 pts (letter)"_s, u"612 x 792 pts (letter)"_s,
                                           u"792 x 612 pts (letter)"_s};
}

void TestImageOperations::imagesToPdf()
{
    QFETCH(QString, pageSize);
    QFETCH(QStringList, pageSizes);
    const QStringList files = {save(halves(300, 200), path(u"album.jpg"_s)),
                               save(halves(200, 300), path(u"b.png"_s)),
                               save(halves(300, 200), path(u"c.webp"_s))};
    const auto outcome =
        ImageOperations::imagesToPdf(files, {{u"pageSize"_s, pageSize}}, m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(u"album.pdf"_s)});
    const QString info = run(u"pdfinfo"_s, {u"-f"_s, u"1"_s, u"-l"_s, u"10"_s, outcome.outputFiles.first()});
    QVERIFY2(info.contains(QRegularExpression(u"Pages:\\s+3\\n"_s)), qPrintable(info));
    QStringList sizes;
    for (const auto& match : QRegularExpression(u"Page +\\d+ size: +(.*)\\n"_s).globalMatch(info))
        sizes << match.captured(1).trimmed();
    QCOMPARE(sizes, pageSizes);
}

void TestImageOperations::stitch_data()
{
    QTest::addColumn<QString>("direction");
    QTest::addColumn<int>("spacing");
    QTest::addColumn<QSize>("expected");
    // 400 x 200 beside 300 x 300: the second is brought to 200 high.
    QTest::newRow("side by side") << u"horizontal"_s << 0 << QSize(600, 200);
    QTest::newRow("side by side, spaced") << u"horizontal"_s << 20 << QSize(620, 200);
    // One above the other, both 300 wide.
    QTest::newRow("one above the other, spaced") << u"vertical"_s << 10 << QSize(300, 150 + 10 + 300);
}

void TestImageOperations::stitch()
{
    QFETCH(QString, direction);
    QFETCH(int, spacing);
    QFETCH(QSize, expected);
    const QString first = save(halves(400, 200), path(u"left.png"_s));
    const QString second = save(halves(300, 300), path(u"right.jpg"_s));
    const auto outcome = ImageOperations::stitch({first, second},
                                                 {{u"direction"_s, direction},
                                                  {u"spacing"_s, spacing},
                                                  {u"background"_s, u"black"_s},
                                                  {u"format"_s, u"png"_s}},
                                                 m_outputs->path(), {});
    QVERIFY(outcome.failures.isEmpty());
    QCOMPARE(outcome.outputFiles, QStringList{m_outputs->filePath(u"left (stitched).png"_s)});
    const QImage result(outcome.outputFiles.first());
    QCOMPARE(result.size(), expected);
    QVERIFY(isRed(result.pixel(10, 10)));
    if (spacing > 0 && direction == u"horizontal"_s)
        QCOMPARE(result.pixelColor(400 + spacing / 2, 100), QColor(Qt::black));
}

void TestImageOperations::canRead_data()
{
    QTest::addColumn<QString>("mimeType");
    QTest::addColumn<bool>("readable");
    QTest::newRow("jpeg") << u"image/jpeg"_s << true;
    QTest::newRow("png") << u"image/png"_s << true;
    QTest::newRow("webp") << u"image/webp"_s << true;
    QTest::newRow("tiff") << u"image/tiff"_s << true;
    QTest::newRow("text") << u"text/plain"_s << false;
    QTest::newRow("zip") << u"application/zip"_s << false;
    QTest::newRow("unknown") << u"image/x-no-such-thing"_s << false;
}

void TestImageOperations::canRead()
{
    QFETCH(QString, mimeType);
    QFETCH(bool, readable);
    QCOMPARE(ImageOperations::canRead(mimeType), readable);
}

QTEST_MAIN(TestImageOperations)
#include "TestImageOperations.moc"
