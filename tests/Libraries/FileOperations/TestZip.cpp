// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/FileOperations/Zip.h"
#include "support/TestSupport.h"

#include <cstring>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Kind = Zip::Error::Kind;

Q_DECLARE_METATYPE(Zip::Compression)
Q_DECLARE_METATYPE(Kind)

namespace {

// Reads an archive back with Python's zipfile, which checks every CRC as it reads.
constexpr auto pythonReader = R"(
import hashlib, json, sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as archive:
    bad = archive.testzip()
    entries = []
    for info in archive.infolist():
        data = archive.read(info)
        entries.append({"name": info.filename, "flags": info.flag_bits, "method": info.compress_type,
                        "size": info.file_size, "compressed": info.compress_size, "system": info.create_system, "mode": info.external_attr >> 16,
                        "sha256": hashlib.sha256(data).hexdigest()})
    print(json.dumps({"bad": bad, "entries": entries}))
)";

// Text repeats and compresses well; noise does not compress at all.
QByteArray content(const QString& kind, qsizetype size)
{
    QByteArray data;
    data.reserve(size);
    if (kind == u"text"_s) {
        const QByteArray line = "The quick brown fox jumps over the lazy dog, line ";
        for (int number = 0; data.size() < size; ++number) {
            data += line + QByteArray::number(number) + '\n';
        }
        data.truncate(size);
    } else if (kind == u"noise"_s) {
        data.resize(size);
        QRandomGenerator generator{quint32(size)};
        generator.fillRange(reinterpret_cast<quint32*>(data.data()), size / 4);
    } else {
        // Half and half, so blocks of both kinds meet in one file.
        data = content(u"text"_s, size / 2) + content(u"noise"_s, size - size / 2);
    }
    return data;
}

QString sha256(const QByteArray& data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
}

struct ReadBack {
    bool ok = false;
    QString problem;
    QJsonArray entries;
};

ReadBack readWithPython(const QString& archive)
{
    QProcess python;
    python.start(u"python3"_s, {u"-c"_s, QString::fromUtf8(pythonReader), archive});
    if (!python.waitForFinished(120000) || python.exitCode() != 0) {
        return {false, QString::fromUtf8(python.readAllStandardError()), {}};
    }
    const QJsonObject answer = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
    if (!answer.value(u"bad"_s).isNull()) {
        return {false, u"bad member: "_s + answer.value(u"bad"_s).toString(), {}};
    }
    return {true, {}, answer.value(u"entries"_s).toArray()};
}

// unzip's own test of every member; answers its output when it finds a fault.
QString unzipTestProblems(const QString& archive)
{
    QProcess unzip;
    unzip.start(u"unzip"_s, {u"-tqq"_s, archive});
    if (!unzip.waitForFinished(120000)) {
        return u"unzip did not finish"_s;
    }
    if (unzip.exitCode() != 0) {
        return QString::fromUtf8(unzip.readAllStandardOutput() + unzip.readAllStandardError());
    }
    return {};
}

QStringList unzipNames(const QString& archive)
{
    QProcess unzip;
    unzip.start(u"unzip"_s, {u"-Z1"_s, archive});
    unzip.waitForFinished(120000);
    QStringList names = QString::fromUtf8(unzip.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    names.sort();
    return names;
}

QStringList namesOf(const QJsonArray& entries)
{
    QStringList names;
    for (const QJsonValue& entry : entries) {
        names << entry[u"name"_s].toString();
    }
    names.sort();
    return names;
}

QStringList folderContents(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// A small tmpfs that fills up for real; absent where mounting is not allowed.
class SmallDisk final {
public:
    explicit SmallDisk(const QString& folder)
        : m_folder(QFile::encodeName(folder))
    {
        QDir().mkpath(folder);
        m_mounted = ::mount("tmpfs", m_folder.constData(), "tmpfs", 0, "size=1m") == 0;
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            ::umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    bool isMounted() const { return m_mounted; }

private:
    QByteArray m_folder;
    bool m_mounted = false;
};

} // namespace

class TestZip final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void readBackByOtherPrograms_data();
    void readBackByOtherPrograms();
    void archiveNamesNeverCollide_data();
    void archiveNamesNeverCollide();
    void itemsOfOneNameStayApart();
    void linksInsideFoldersAreNotFollowed();
    void failuresLeaveNoArchive_data();
    void failuresLeaveNoArchive();
    void progressCountsEveryByteOnce();
    void quickZipFilesNamesTheArchive_data();
    void quickZipFilesNamesTheArchive();
    void zip64ByEntryCount();

private:
    QString source(const QString& relative) const { return m_root.path() + u"/source/"_s + relative; }
    QString destination() const { return m_root.path() + u"/out"_s; }
    bool makeFile(const QString& relative, const QByteArray& data) const
    {
        const QString path = source(relative);
        return QDir().mkpath(QFileInfo(path).absolutePath()) && Test::writeFile(path, data);
    }
    Zip::Options options(Zip::Compression compression = Zip::Compression::standard)
    {
        Zip::Options result;
        result.compression = compression;
        // A fixed number of threads makes the read-ahead window the same on every machine.
        result.threadPool = &m_pool;
        return result;
    }

    QTemporaryDir m_root;
    QThreadPool m_pool;
};

void TestZip::initTestCase()
{
    Test::isolateStandardPaths();
    QVERIFY(m_root.isValid());
    m_pool.setMaxThreadCount(2);
    for (const char* tool : {"python3", "unzip"}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty()) {
            QSKIP(qPrintable(u"%1 is missing (scripts/deps.sh test installs it)"_s.arg(QLatin1String(tool))));
        }
    }
}

void TestZip::init()
{
    QDir(m_root.path()).removeRecursively();
    QVERIFY(QDir().mkpath(source(QString())));
    QVERIFY(QDir().mkpath(destination()));
}

void TestZip::readBackByOtherPrograms_data()
{
    QTest::addColumn<QStringList>("files"); // "relative path|kind|size"
    QTest::addColumn<QStringList>("emptyFolders");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<Zip::Compression>("compression");
    QTest::addColumn<QStringList>("expectedNames");

    QTest::newRow("several files") << QStringList{u"a.txt|text|2000"_s, u"b.bin|noise|100000"_s,
                                                  u"c.txt|text|0"_s}
                                   << QStringList{} << QStringList{u"a.txt"_s, u"b.bin"_s, u"c.txt"_s}
                                   << Zip::Compression::standard
                                   << QStringList{u"a.txt"_s, u"b.bin"_s, u"c.txt"_s};
    QTest::newRow("nested folders keep an empty one")
        << QStringList{u"Project/read me.txt|text|500"_s, u"Project/src/deep/main.cpp|text|70000"_s,
                       u"Project/src/data.bin|noise|3000"_s}
        << QStringList{u"Project/empty"_s, u"Project/src/deep/nothing here"_s} << QStringList{u"Project"_s}
        << Zip::Compression::standard
        << QStringList{u"Project/"_s,
                       u"Project/empty/"_s,
                       u"Project/read me.txt"_s,
                       u"Project/src/"_s,
                       u"Project/src/data.bin"_s,
                       u"Project/src/deep/"_s,
                       u"Project/src/deep/main.cpp"_s,
                       u"Project/src/deep/nothing here/"_s};
    QTest::newRow("UTF-8 names") << QStringList{u"Café/naïve résumé.txt|text|100"_s, u"日本語.txt|text|50"_s,
                                                u"grin 😀.txt|noise|10"_s}
                                 << QStringList{u"Café/Ærø"_s}
                                 << QStringList{u"Café"_s, u"日本語.txt"_s, u"grin 😀.txt"_s}
                                 << Zip::Compression::standard
                                 << QStringList{u"Café/"_s, u"Café/naïve résumé.txt"_s, u"Café/Ærø/"_s,
                                                u"grin 😀.txt"_s, u"日本語.txt"_s};
    // Several blocks per file: the blocks' deflate pieces and CRCs must join into one stream.
    QTest::newRow("files of many blocks")
        << QStringList{u"big/mixed.dat|mixed|5500000"_s, u"big/text.log|text|3145728"_s,
                       u"big/noise.bin|noise|2097153"_s}
        << QStringList{} << QStringList{u"big"_s} << Zip::Compression::standard
        << QStringList{u"big/"_s, u"big/mixed.dat"_s, u"big/noise.bin"_s, u"big/text.log"_s};
    QTest::newRow("stored, many blocks") << QStringList{u"s/mixed.dat|mixed|2500000"_s, u"s/t.txt|text|10"_s}
                                         << QStringList{} << QStringList{u"s"_s} << Zip::Compression::store
                                         << QStringList{u"s/"_s, u"s/mixed.dat"_s, u"s/t.txt"_s};
    QTest::newRow("fastest") << QStringList{u"f.dat|mixed|1500000"_s} << QStringList{}
                             << QStringList{u"f.dat"_s} << Zip::Compression::fastest
                             << QStringList{u"f.dat"_s};
    QTest::newRow("best") << QStringList{u"f.dat|mixed|1500000"_s} << QStringList{} << QStringList{u"f.dat"_s}
                          << Zip::Compression::best << QStringList{u"f.dat"_s};
}

void TestZip::readBackByOtherPrograms()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, emptyFolders);
    QFETCH(QStringList, items);
    QFETCH(Zip::Compression, compression);
    QFETCH(QStringList, expectedNames);

    QHash<QString, QString> expectedHashes;
    QHash<QString, QString> kinds;
    for (const QString& file : files) {
        const QStringList parts = file.split(u'|');
        const QByteArray data = content(parts[1], parts[2].toLongLong());
        QVERIFY(makeFile(parts[0], data));
        expectedHashes.insert(parts[0], sha256(data));
        kinds.insert(parts[0], parts[1]);
    }
    for (const QString& folder : emptyFolders) {
        QVERIFY(QDir().mkpath(source(folder)));
    }
    QStringList paths;
    for (const QString& item : items) {
        paths << source(item);
    }

    const auto archive = Zip::zipFiles(paths, destination() + u"/Archive.zip"_s, options(compression));
    QVERIFY2(archive, Test::failureText(archive).constData());
    QCOMPARE(*archive, destination() + u"/Archive.zip"_s);

    const QString unzipProblems = unzipTestProblems(*archive);
    QVERIFY2(unzipProblems.isEmpty(), qPrintable(unzipProblems));
    QCOMPARE(unzipNames(*archive), expectedNames);

    const ReadBack readBack = readWithPython(*archive);
    QVERIFY2(readBack.ok, qPrintable(readBack.problem));
    QCOMPARE(namesOf(readBack.entries), expectedNames);
    for (const QJsonValue& value : readBack.entries) {
        const QJsonObject entry = value.toObject();
        const QString name = entry[u"name"_s].toString();
        QVERIFY2(entry[u"flags"_s].toInt() & 0x800, qPrintable(name)); // UTF-8 names
        QCOMPARE(entry[u"system"_s].toInt(), 3);                       // Unix modes
        if (name.endsWith(u'/')) {
            QVERIFY(S_ISDIR(mode_t(entry[u"mode"_s].toInt())));
            continue;
        }
        QVERIFY(S_ISREG(mode_t(entry[u"mode"_s].toInt())));
        QCOMPARE(entry[u"sha256"_s].toString(), expectedHashes.value(name));
        const double size = entry[u"size"_s].toDouble();
        const double compressed = entry[u"compressed"_s].toDouble();
        if (compression == Zip::Compression::store) {
            QCOMPARE(entry[u"method"_s].toInt(), 0);
        } else if (kinds.value(name) == u"text"_s && size >= 10000) {
            QVERIFY2(compressed < size / 4, qPrintable(name)); // no text may be taken for noise
        } else if (kinds.value(name) == u"noise"_s) {
            QVERIFY2(compressed <= size * 1.001 + 64, qPrintable(name)); // noise barely grows
        }
    }
}

void TestZip::archiveNamesNeverCollide_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QString>("expected");

    QTest::newRow("free") << u"Archive.zip"_s << QStringList{} << u"Archive.zip"_s;
    QTest::newRow("taken once") << u"Archive.zip"_s << QStringList{u"Archive.zip"_s} << u"Archive 2.zip"_s;
    QTest::newRow("taken twice") << u"Archive.zip"_s << QStringList{u"Archive.zip"_s, u"Archive 2.zip"_s}
                                 << u"Archive 3.zip"_s;
    QTest::newRow("gap is used") << u"Archive.zip"_s << QStringList{u"Archive.zip"_s, u"Archive 3.zip"_s}
                                 << u"Archive 2.zip"_s;
    QTest::newRow("a folder of that name")
        << u"Photos.zip"_s << QStringList{u"Photos.zip/"_s} << u"Photos 2.zip"_s;
    QTest::newRow("no extension") << u"Backup"_s << QStringList{u"Backup"_s} << u"Backup 2"_s;
    QTest::newRow("last extension only")
        << u"notes.tar.gz"_s << QStringList{u"notes.tar.gz"_s, u"notes.tar 2.gz"_s} << u"notes.tar 3.gz"_s;
    QTest::newRow("hidden file") << u".profile"_s << QStringList{u".profile"_s} << u".profile 2"_s;
}

void TestZip::archiveNamesNeverCollide()
{
    QFETCH(QString, wanted);
    QFETCH(QStringList, existing);
    QFETCH(QString, expected);

    for (const QString& name : existing) {
        if (name.endsWith(u'/')) {
            QVERIFY(QDir().mkpath(destination() + u'/' + name));
        } else {
            QVERIFY(Test::writeFile(destination() + u'/' + name, "keep me"));
        }
    }
    QVERIFY(makeFile(u"note.txt"_s, "hello"));

    const auto archive = Zip::zipFiles({source(u"note.txt"_s)}, destination() + u'/' + wanted, options());
    QVERIFY2(archive, Test::failureText(archive).constData());
    QCOMPARE(*archive, destination() + u'/' + expected);
    QVERIFY(unzipTestProblems(*archive).isEmpty());
    for (const QString& name : existing) {
        if (!name.endsWith(u'/')) {
            QCOMPARE(Test::readFile(destination() + u'/' + name), QByteArray("keep me"));
        }
    }
}

void TestZip::itemsOfOneNameStayApart()
{
    QVERIFY(makeFile(u"x/report.txt"_s, "first"));
    QVERIFY(makeFile(u"y/report.txt"_s, "second"));
    QVERIFY(makeFile(u"z/Report.txt"_s, "third"));
    const auto archive =
        Zip::zipFiles({source(u"x/report.txt"_s), source(u"y/report.txt"_s), source(u"z/Report.txt"_s)},
                      destination() + u"/Archive.zip"_s, options());
    QVERIFY2(archive, Test::failureText(archive).constData());

    const ReadBack readBack = readWithPython(*archive);
    QVERIFY2(readBack.ok, qPrintable(readBack.problem));
    QHash<QString, QString> hashes;
    for (const QJsonValue& entry : readBack.entries) {
        hashes.insert(entry[u"name"_s].toString(), entry[u"sha256"_s].toString());
    }
    // Names that differ only by case would still overwrite each other on many systems.
    QCOMPARE(hashes.size(), 3);
    QCOMPARE(hashes.value(u"report.txt"_s), sha256("first"));
    QCOMPARE(hashes.value(u"report 2.txt"_s), sha256("second"));
    QCOMPARE(hashes.value(u"Report 3.txt"_s), sha256("third"));
}

void TestZip::linksInsideFoldersAreNotFollowed()
{
    QVERIFY(makeFile(u"outside/secret.txt"_s, "SECRET-OUTSIDE-THE-TREE"));
    QVERIFY(makeFile(u"outside/folder/more.txt"_s, "SECRET-IN-A-LINKED-FOLDER"));
    QVERIFY(makeFile(u"tree/inner.txt"_s, "inner"));
    QVERIFY(makeFile(u"target.txt"_s, "reached through a link given as an item"));
    QCOMPARE(::symlink("../outside/secret.txt", QFile::encodeName(source(u"tree/to-secret"_s)).constData()),
             0);
    QCOMPARE(::symlink(QFile::encodeName(source(u"outside/folder"_s)).constData(),
                       QFile::encodeName(source(u"tree/to-folder"_s)).constData()),
             0);
    QCOMPARE(::symlink("inner.txt", QFile::encodeName(source(u"tree/to-inner"_s)).constData()), 0);
    QCOMPARE(::symlink("target.txt", QFile::encodeName(source(u"item-link"_s)).constData()), 0);

    // Stored, so that any byte taken from outside would show in the archive as it is.
    const auto archive = Zip::zipFiles({source(u"tree"_s), source(u"item-link"_s)},
                                       destination() + u"/Archive.zip"_s, options(Zip::Compression::store));
    QVERIFY2(archive, Test::failureText(archive).constData());
    QVERIFY(!Test::readFile(*archive).contains("SECRET"));

    QCOMPARE(unzipNames(*archive),
             (QStringList{u"item-link"_s, u"tree/"_s, u"tree/inner.txt"_s, u"tree/to-folder"_s,
                          u"tree/to-inner"_s, u"tree/to-secret"_s}));
    const ReadBack readBack = readWithPython(*archive);
    QVERIFY2(readBack.ok, qPrintable(readBack.problem));
    for (const QJsonValue& entry : readBack.entries) {
        const QString name = entry[u"name"_s].toString();
        const mode_t mode = mode_t(entry[u"mode"_s].toInt());
        if (name == u"tree/to-secret"_s) {
            QVERIFY(S_ISLNK(mode));
            QCOMPARE(entry[u"sha256"_s].toString(), sha256("../outside/secret.txt"));
        } else if (name == u"tree/to-inner"_s) {
            QVERIFY(S_ISLNK(mode));
        } else if (name == u"item-link"_s) {
            QVERIFY(S_ISREG(mode));
            QCOMPARE(entry[u"sha256"_s].toString(), sha256("reached through a link given as an item"));
        }
    }

    // unzip makes the links links again.
    const QString unpacked = m_root.path() + u"/unpacked"_s;
    QCOMPARE(QProcess::execute(u"unzip"_s, {u"-qq"_s, *archive, u"-d"_s, unpacked}), 0);
    QCOMPARE(QFileInfo(unpacked + u"/tree/to-inner"_s).symLinkTarget(), unpacked + u"/tree/inner.txt"_s);
    QCOMPARE(Test::readFile(unpacked + u"/tree/to-inner"_s), QByteArray("inner"));
}

enum class Scenario {
    unreadableFolderInside,
    unreadableFileInside,
    missingItem,
    fileVanishesBeforeItIsRead,
    fileShrinksWhileRead,
    cancelledMidway,
    cancelledBeforeStart,
    destinationMissing,
    diskFull,
};
Q_DECLARE_METATYPE(Scenario)

void TestZip::failuresLeaveNoArchive_data()
{
    QTest::addColumn<Scenario>("scenario");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QString>("namedFile"); // relative to the source folder, or "@" for the archive

    QTest::newRow("unreadable folder inside")
        << Scenario::unreadableFolderInside << Kind::unreadable << u"tree/locked"_s;
    QTest::newRow("unreadable file inside")
        << Scenario::unreadableFileInside << Kind::unreadable << u"tree/z-locked.txt"_s;
    QTest::newRow("missing item") << Scenario::missingItem << Kind::vanished << u"gone.txt"_s;
    QTest::newRow("file vanishes before it is read")
        << Scenario::fileVanishesBeforeItIsRead << Kind::vanished << u"tree/b.txt"_s;
    QTest::newRow("file shrinks while it is read")
        << Scenario::fileShrinksWhileRead << Kind::vanished << u"tree/big.bin"_s;
    QTest::newRow("cancelled midway") << Scenario::cancelledMidway << Kind::cancelled << QString();
    QTest::newRow("cancelled before start") << Scenario::cancelledBeforeStart << Kind::cancelled << QString();
    QTest::newRow("destination missing") << Scenario::destinationMissing << Kind::writeFailed << u"@"_s;
    QTest::newRow("disk full") << Scenario::diskFull << Kind::writeFailed << u"@"_s;
}

void TestZip::failuresLeaveNoArchive()
{
    QFETCH(Scenario, scenario);
    QFETCH(Kind, kind);
    QFETCH(QString, namedFile);

    QVERIFY(makeFile(u"tree/a.txt"_s, content(u"text"_s, 1000)));
    QVERIFY(makeFile(u"tree/b.txt"_s, content(u"text"_s, 1000)));
    QVERIFY(makeFile(u"tree/big.bin"_s, content(u"noise"_s, 24 * 1024 * 1024)));
    QVERIFY(QDir().mkpath(source(u"tree/locked"_s)));
    QVERIFY(makeFile(u"tree/locked/inside.txt"_s, "x"));
    QVERIFY(makeFile(u"tree/z-locked.txt"_s, "x"));
    QStringList paths{source(u"tree"_s)};
    QString archivePath = destination() + u"/Archive.zip"_s;
    QString outputFolder = destination();
    Zip::Options zipOptions = options(Zip::Compression::fastest);
    std::stop_source stop;
    zipOptions.stopToken = stop.get_token();
    std::unique_ptr<Test::UnreadableFolder> locked;
    std::unique_ptr<SmallDisk> disk;

    switch (scenario) {
    case Scenario::unreadableFolderInside:
        QVERIFY(QFile::remove(source(u"tree/z-locked.txt"_s)));
        locked = std::make_unique<Test::UnreadableFolder>(source(u"tree/locked"_s));
        if (!locked->isEnforced()) {
            QSKIP("permissions are not enforced here");
        }
        break;
    case Scenario::unreadableFileInside:
        QVERIFY(QDir(source(u"tree/locked"_s)).removeRecursively());
        locked = std::make_unique<Test::UnreadableFolder>(source(u"tree/z-locked.txt"_s));
        if (QFile file(source(u"tree/z-locked.txt"_s)); file.open(QIODevice::ReadOnly)) {
            QSKIP("permissions are not enforced here");
        }
        break;
    case Scenario::missingItem:
        paths << source(u"gone.txt"_s);
        break;
    case Scenario::fileVanishesBeforeItIsRead:
        // The first report comes after the listing and before any file is opened.
        zipOptions.progress = [this](const Zip::Progress& progress) {
            if (progress.bytesRead == 0) {
                QFile::remove(source(u"tree/b.txt"_s));
            }
        };
        break;
    case Scenario::fileShrinksWhileRead:
        // Two threads read at most six blocks ahead, so most of the file is read after the cut.
        zipOptions.progress = [this](const Zip::Progress& progress) {
            if (progress.bytesRead > 3000) {
                QFile::resize(source(u"tree/big.bin"_s), 4096);
            }
        };
        break;
    case Scenario::cancelledMidway:
        zipOptions.progress = [&stop](const Zip::Progress& progress) {
            if (progress.bytesRead > 3000) {
                stop.request_stop();
            }
        };
        break;
    case Scenario::cancelledBeforeStart:
        stop.request_stop();
        break;
    case Scenario::destinationMissing:
        outputFolder = destination() + u"/not here"_s;
        archivePath = outputFolder + u"/Archive.zip"_s;
        break;
    case Scenario::diskFull:
        outputFolder = m_root.path() + u"/small disk"_s;
        archivePath = outputFolder + u"/Archive.zip"_s;
        disk = std::make_unique<SmallDisk>(outputFolder);
        if (!disk->isMounted()) {
            QSKIP("a small tmpfs cannot be mounted here (needs root)");
        }
        break;
    }

    const auto archive = Zip::zipFiles(paths, archivePath, zipOptions);
    const QByteArray written = archive ? archive->toUtf8() : QByteArray();
    QVERIFY2(!archive, written.constData());
    QCOMPARE(archive.error().kind, kind);
    if (namedFile == u"@"_s) {
        QCOMPARE(archive.error().path, archivePath);
        QVERIFY(archive.error().description().contains(archivePath));
        QVERIFY(!archive.error().reason.isEmpty());
    } else if (!namedFile.isEmpty()) {
        QCOMPARE(archive.error().path, source(namedFile));
        QVERIFY2(archive.error().description().contains(source(namedFile)),
                 qPrintable(archive.error().description()));
    }
    if (scenario == Scenario::diskFull) {
        QCOMPARE(archive.error().reason, QString::fromLocal8Bit(std::strerror(ENOSPC)));
    }
    QCOMPARE(folderContents(outputFolder), QStringList());
    // Nothing of the user's is touched.
    QVERIFY(QFile::exists(source(u"tree/a.txt"_s)));
}

void TestZip::progressCountsEveryByteOnce()
{
    QVERIFY(makeFile(u"p/one.bin"_s, content(u"mixed"_s, 3 * 1024 * 1024 + 17)));
    QVERIFY(makeFile(u"p/two.txt"_s, content(u"text"_s, 5000)));
    QVERIFY(makeFile(u"p/empty"_s, {}));
    const qint64 total = 3 * 1024 * 1024 + 17 + 5000;

    QList<Zip::Progress> reports;
    Zip::Options zipOptions = options();
    zipOptions.progress = [&reports](const Zip::Progress& progress) { reports << progress; };
    const auto archive = Zip::zipFiles({source(u"p"_s)}, destination() + u"/Archive.zip"_s, zipOptions);
    QVERIFY2(archive, Test::failureText(archive).constData());

    QVERIFY(reports.size() >= 3);
    QCOMPARE(reports.first().bytesRead, 0);
    QCOMPARE(reports.last().bytesRead, total);
    QCOMPARE(reports.last().fraction(), 1.0);
    for (qsizetype index = 0; index < reports.size(); ++index) {
        QCOMPARE(reports[index].totalBytes, total);
        if (index > 0) {
            QVERIFY(reports[index].bytesRead >= reports[index - 1].bytesRead);
        }
    }
}

void TestZip::quickZipFilesNamesTheArchive_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("expected"); // empty when refused

    QTest::newRow("plain") << u"Archive"_s << u"Archive.zip"_s;
    QTest::newRow("slashes cannot leave the folder") << u"../up/Archive"_s << u".._up_Archive.zip"_s;
    QTest::newRow("empty") << u"  "_s << QString();
    QTest::newRow("dot dot") << u".."_s << QString();
}

void TestZip::quickZipFilesNamesTheArchive()
{
    QFETCH(QString, fileName);
    QFETCH(QString, expected);

    QVERIFY(makeFile(u"note.txt"_s, "hello"));
    const QString folder = destination() + u"/made/on demand"_s;
    const auto archive = Zip::quickZipFiles({source(u"note.txt"_s)}, folder, fileName, options());
    if (expected.isEmpty()) {
        QVERIFY(!archive);
        QCOMPARE(archive.error().kind, Kind::invalidInput);
        return;
    }
    QVERIFY2(archive, Test::failureText(archive).constData());
    QCOMPARE(*archive, folder + u'/' + expected);
    QCOMPARE(folderContents(folder), QStringList{expected});
}

void TestZip::zip64ByEntryCount()
{
    // More than 65535 entries need the ZIP64 end of central directory.
    constexpr int count = 66000;
    const QString folder = source(u"many"_s);
    QVERIFY(QDir().mkpath(folder));
    for (int index = 0; index < count; ++index) {
        QFile file(folder + u"/f"_s + QString::number(index));
        QVERIFY(file.open(QIODevice::WriteOnly));
        if (index % 1000 == 0) {
            file.write(QByteArray::number(index));
        }
    }
    const auto archive = Zip::zipFiles({folder}, destination() + u"/Archive.zip"_s, options());
    QVERIFY2(archive, Test::failureText(archive).constData());

    const QString unzipProblems = unzipTestProblems(*archive);
    QVERIFY2(unzipProblems.isEmpty(), qPrintable(unzipProblems.left(2000)));
    const ReadBack readBack = readWithPython(*archive);
    QVERIFY2(readBack.ok, qPrintable(readBack.problem));
    QCOMPARE(readBack.entries.size(), count + 1);
    QSet<QString> names;
    for (const QJsonValue& entry : readBack.entries) {
        names.insert(entry[u"name"_s].toString());
    }
    QCOMPARE(names.size(), count + 1);
    QVERIFY(names.contains(u"many/f65999"_s));
}

QTEST_GUILESS_MAIN(TestZip)
#include "TestZip.moc"
