// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// The operations that are not image processing, on real files: batch rename, copy and move with name
// clashes, the Trash, and the type table's offers.
// Test data reads better as plain literals; the program itself keeps the strict casts.
#undef QT_NO_CAST_FROM_ASCII

#include "Libraries/FileOperations/DesktopWallpaper.h"
#include "Libraries/FileOperations/FileOperationType.h"
#include "Libraries/FileOperations/FileTransfer.h"
#include "Libraries/FileOperations/StandardFileOperations.h"
#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace Vantrope;

namespace {

QString makeFile(const QString& folder, const QString& name, const QByteArray& content = "x")
{
    const QString path = QDir(folder).filePath(name);
    Test::writeFile(path, content);
    return path;
}

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestFileOperations final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void batchRenameWritesThePatternsNames_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("digits");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("name and counter") << QStringList{"b.txt", "a.jpg"} << "{name} {counter}" << 1 << 1
                                          << QStringList{"a 2.jpg", "b 1.txt"};
        QTest::newRow("padded counter from 7") << QStringList{"IMG_1.JPG", "IMG_2.png"} << "Holiday {counter}"
                                               << 7 << 3 << QStringList{"Holiday 007.JPG", "Holiday 008.png"};
        // Each takes the other's name: staged through hidden names, nothing is lost on the way.
        QTest::newRow("swapped names")
            << QStringList{"1.txt", "2.txt"} << "{counter}" << 2 << 1 << QStringList{"2.txt", "3.txt"};
        QTest::newRow("double extension kept") << QStringList{"backup.tar.gz", "notes"} << "old {name}" << 1
                                               << 1 << QStringList{"old backup.tar.gz", "old notes"};
        QTest::newRow("date token") << QStringList{"scan.pdf", "photo.jpg"} << "{date} {name}" << 1 << 1
                                    << QStringList{"2024-03-09 photo.jpg", "2024-03-09 scan.pdf"};
    }

    void batchRenameWritesThePatternsNames()
    {
        QFETCH(QStringList, names);
        QFETCH(QString, pattern);
        QFETCH(int, start);
        QFETCH(int, digits);
        QFETCH(QStringList, expected);
        QTemporaryDir folder;
        QStringList files;
        for (const QString& name : names) {
            files.append(makeFile(folder.path(), name, name.toUtf8()));
            QFile file(files.last());
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime(QDate(2024, 3, 9), QTime(12, 0)),
                                     QFileDevice::FileModificationTime));
        }
        const auto outcome = StandardFileOperations::batchRename(
            files, {{"pattern", pattern}, {"start", start}, {"digits", digits}}, {}, {});
        QVERIFY(outcome.failures.isEmpty());
        QCOMPARE(namesIn(folder.path()), expected);
        QCOMPARE(outcome.outputFiles.size(), files.size());
        // Each output is its own input under the new name: contents follow.
        for (qsizetype index = 0; index < files.size(); ++index) {
            QCOMPARE(Test::readFile(outcome.outputFiles[index]), names[index].toUtf8());
        }
    }

    void batchRenameRefusesAPatternThatMergesNames_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::newRow("no counter") << "Holiday";
        QTest::newRow("slash") << "a/{counter}";
        QTest::newRow("empty") << "  ";
    }

    void batchRenameRefusesAPatternThatMergesNames()
    {
        QFETCH(QString, pattern);
        QTemporaryDir folder;
        const QStringList files{makeFile(folder.path(), "one.txt"), makeFile(folder.path(), "two.txt")};
        const auto outcome = StandardFileOperations::batchRename(
            files, {{"pattern", pattern}, {"start", 1}, {"digits", 1}}, {}, {});
        QCOMPARE(outcome.failures.size(), 2);
        QVERIFY(outcome.outputFiles.isEmpty());
        QCOMPARE(namesIn(folder.path()), (QStringList{"one.txt", "two.txt"}));
    }

    void batchRenameNeverOverwritesAnItemOutsideTheSet()
    {
        QTemporaryDir folder;
        makeFile(folder.path(), "Trip 1.txt", "keep me");
        const QStringList files{makeFile(folder.path(), "a.txt", "a"), makeFile(folder.path(), "b.txt", "b")};
        const auto outcome = StandardFileOperations::batchRename(
            files, {{"pattern", "Trip {counter}"}, {"start", 1}, {"digits", 1}}, {}, {});
        QCOMPARE(Test::readFile(QDir(folder.path()).filePath("Trip 1.txt")), QByteArray("keep me"));
        QCOMPARE(Test::readFile(QDir(folder.path()).filePath("Trip 1 2.txt")), QByteArray("a"));
        QCOMPARE(Test::readFile(QDir(folder.path()).filePath("Trip 2.txt")), QByteArray("b"));
        // The name it could not have is reported with the file.
        QCOMPARE(outcome.failures.size(), 1);
        QCOMPARE(outcome.failures.first().path, files.first());
    }

    void nameClashIsResolvedAsChosen_data()
    {
        QTest::addColumn<FileTransfer::Mode>("mode");
        QTest::addColumn<QString>("clash");
        QTest::addColumn<QStringList>("destinationNames");
        QTest::addColumn<QString>("newContentName"); // where the incoming content lands, or empty
        QTest::addColumn<bool>("sourceRemains");
        QTest::addColumn<bool>("oldInTrash");

        for (const auto mode : {FileTransfer::Mode::copy, FileTransfer::Mode::move}) {
            const bool copy = mode == FileTransfer::Mode::copy;
            const QByteArray prefix = copy ? "copy, " : "move, ";
            QTest::newRow(QByteArray(prefix + "replace").constData())
                << mode << "replace" << QStringList{"other.txt", "report.txt"} << "report.txt" << copy
                << true;
            QTest::newRow(QByteArray(prefix + "keep both").constData())
                << mode << "keepBoth" << QStringList{"other.txt", "report 2.txt", "report.txt"}
                << "report 2.txt" << copy << false;
            QTest::newRow(QByteArray(prefix + "skip").constData())
                << mode << "skip" << QStringList{"report.txt"} << QString() << true << false;
        }
    }

    void nameClashIsResolvedAsChosen()
    {
        QFETCH(FileTransfer::Mode, mode);
        QFETCH(QString, clash);
        QFETCH(QStringList, destinationNames);
        QFETCH(QString, newContentName);
        QFETCH(bool, sourceRemains);
        QFETCH(bool, oldInTrash);
        QTemporaryDir source;
        QTemporaryDir destination;
        const QString report = makeFile(source.path(), "report.txt", "new report");
        const QString other = makeFile(source.path(), "other.txt", "other");
        makeFile(destination.path(), "report.txt", "old report");
        const QString trash =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Trash/files";
        QDir(QFileInfo(trash).absolutePath()).removeRecursively();

        const QVariantMap values{{"destination", destination.path()}, {"clash", clash}};
        const auto outcome = mode == FileTransfer::Mode::copy
                                 ? StandardFileOperations::copyTo({report, other}, values, {}, {})
                                 : StandardFileOperations::moveTo({report, other}, values, {}, {});

        QVERIFY(outcome.failures.isEmpty());
        // Skipping leaves the clash alone but the other item still goes.
        QVERIFY(QFileInfo::exists(QDir(destination.path()).filePath("other.txt")) || clash == "skip");
        if (clash == "skip") {
            QCOMPARE(namesIn(destination.path()), (QStringList{"other.txt", "report.txt"}));
        } else {
            QCOMPARE(namesIn(destination.path()), destinationNames);
        }
        if (!newContentName.isEmpty()) {
            QCOMPARE(Test::readFile(QDir(destination.path()).filePath(newContentName)),
                     QByteArray("new report"));
            QVERIFY(outcome.outputFiles.contains(QDir(destination.path()).filePath(newContentName)));
        } else {
            QCOMPARE(Test::readFile(QDir(destination.path()).filePath("report.txt")),
                     QByteArray("old report"));
            QVERIFY(!outcome.outputFiles.contains(QDir(destination.path()).filePath("report.txt")));
        }
        QCOMPARE(QFileInfo::exists(report), sourceRemains);
        // A replaced item is not destroyed: it waits in the Trash.
        QCOMPARE(Test::readFile(trash + "/report.txt"), oldInTrash ? QByteArray("old report") : QByteArray());
    }

    void askWithoutAnyoneToAskOverwritesNothing()
    {
        QTemporaryDir source;
        QTemporaryDir destination;
        const QString report = makeFile(source.path(), "report.txt", "new");
        makeFile(destination.path(), "report.txt", "old");
        const auto outcome = StandardFileOperations::moveTo(
            {report}, {{"destination", destination.path()}, {"clash", "ask"}}, {}, {});
        QCOMPARE(outcome.failures.size(), 1);
        QCOMPARE(outcome.failures.first().path, report);
        QCOMPARE(Test::readFile(QDir(destination.path()).filePath("report.txt")), QByteArray("old"));
        QVERIFY(QFileInfo::exists(report));
    }

    void foldersAreCopiedWhole()
    {
        QTemporaryDir source;
        QTemporaryDir destination;
        const QString album = QDir(source.path()).filePath("album");
        makeFile(album, "cover.jpg", "cover");
        makeFile(album + "/raw", ".hidden", "hidden");
        const auto outcome = StandardFileOperations::copyTo(
            {album}, {{"destination", destination.path()}, {"clash", "keepBoth"}}, {}, {});
        QVERIFY(outcome.failures.isEmpty());
        QCOMPARE(Test::readFile(destination.path() + "/album/cover.jpg"), QByteArray("cover"));
        QCOMPARE(Test::readFile(destination.path() + "/album/raw/.hidden"), QByteArray("hidden"));
        // No half-written leftovers beside it.
        QCOMPARE(namesIn(destination.path()), QStringList{"album"});
        // Into itself: refused, nothing made.
        const auto inside = StandardFileOperations::copyTo(
            {album}, QVariantMap{{"destination", QString(album + "/raw")}, {"clash", "keepBoth"}}, {}, {});
        QCOMPARE(inside.failures.size(), 1);
        QCOMPARE(namesIn(album + "/raw"), QStringList{".hidden"});
    }

    void moveToTrashLeavesTrashInfo()
    {
        QTemporaryDir folder;
        const QString file = makeFile(folder.path(), "draft 1.txt", "draft");
        const QString trash =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/Trash";
        QDir(trash).removeRecursively();
        const auto outcome =
            StandardFileOperations::moveToTrash({file, folder.path() + "/missing.txt"}, {}, {}, {});
        QVERIFY(!QFileInfo::exists(file));
        QCOMPARE(Test::readFile(trash + "/files/draft 1.txt"), QByteArray("draft"));
        const QString info = QString::fromUtf8(Test::readFile(trash + "/info/draft 1.txt.trashinfo"));
        QVERIFY2(info.startsWith("[Trash Info]"), qPrintable(info));
        const QStringList lines = info.split('\n');
        const auto path = std::find_if(lines.begin(), lines.end(),
                                       [](const QString& line) { return line.startsWith("Path="); });
        QVERIFY2(path != lines.end(), qPrintable(info));
        QCOMPARE(QUrl::fromPercentEncoding(path->mid(5).toUtf8()), file);
        QVERIFY(info.contains("DeletionDate="));
        QCOMPARE(outcome.failures.size(), 1);
        QCOMPARE(outcome.failures.first().path, folder.path() + "/missing.txt");
    }

    void wallpaperGoesIntoGioSettings()
    {
        if (QStandardPaths::findExecutable("gsettings").isEmpty()) {
            QSKIP("gsettings is not installed");
        }
        QTemporaryDir config;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // GIO's key file backend keeps the values in the test's own folder, where another process reads them.
        environment.insert("GSETTINGS_BACKEND", "keyfile");
        environment.insert("XDG_CONFIG_HOME", config.path());
        environment.insert("XDG_CURRENT_DESKTOP", "GNOME");
        const QString picture = makeFile(config.path(), "my picture #1.png");
        QCOMPARE(DesktopWallpaper::detect(environment), DesktopWallpaper::Desktop::gnome);
        const auto set = DesktopWallpaper::set(picture, DesktopWallpaper::Desktop::gnome, environment);
        QVERIFY2(set, set ? "" : qPrintable(set.error()));
        for (const QString key : {"picture-uri", "picture-uri-dark"}) {
            QProcess get;
            get.setProcessEnvironment(environment);
            get.start("gsettings", {"get", "org.gnome.desktop.background", key});
            QVERIFY(get.waitForFinished());
            QCOMPARE(QString::fromUtf8(get.readAllStandardOutput()).trimmed(),
                     "'" + QUrl::fromLocalFile(picture).toString(QUrl::FullyEncoded) + "'");
        }
        environment.insert("XDG_CURRENT_DESKTOP", "KDE");
        QCOMPARE(DesktopWallpaper::detect(environment), DesktopWallpaper::Desktop::plasma);
        environment.insert("XDG_CURRENT_DESKTOP", "ubuntu:XFCE");
        QCOMPARE(DesktopWallpaper::detect(environment), DesktopWallpaper::Desktop::xfce);
    }

    void typesAreOfferedByMimeTypeAndCount_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QStringList>("mimeTypes");
        QTest::addColumn<bool>("offered");
        const QStringList png{"image/png"};
        const QStringList twoPng{"image/png", "image/jpeg"};
        QTest::newRow("resize images") << int(FileOperationType::imageResize) << twoPng << true;
        QTest::newRow("resize with a text")
            << int(FileOperationType::imageResize) << QStringList{"image/png", "text/plain"} << false;
        QTest::newRow("stitch one") << int(FileOperationType::imageStitch) << png << false;
        QTest::newRow("wallpaper two") << int(FileOperationType::setWallpaper) << twoPng << false;
        QTest::newRow("copy text of markdown")
            << int(FileOperationType::copyTextContent) << QStringList{"text/markdown", "text/x-csrc"} << true;
        QTest::newRow("copy text of a picture") << int(FileOperationType::copyTextContent) << png << false;
        QTest::newRow("rename one") << int(FileOperationType::rename) << png << true;
        QTest::newRow("rename two") << int(FileOperationType::rename) << twoPng << false;
        QTest::newRow("batch rename two") << int(FileOperationType::batchRename) << twoPng << true;
        QTest::newRow("batch rename one") << int(FileOperationType::batchRename) << png << false;
        QTest::newRow("trash a folder")
            << int(FileOperationType::moveToTrash) << QStringList{"inode/directory"} << true;
        QTest::newRow("zip nothing") << int(FileOperationType::zip) << QStringList{} << false;
    }

    void typesAreOfferedByMimeTypeAndCount()
    {
        QFETCH(int, type);
        QFETCH(QStringList, mimeTypes);
        QFETCH(bool, offered);
        const auto operation = FileOperationType::fromRawValue(type);
        QVERIFY(operation);
        QCOMPARE(operation->canPerform(mimeTypes), offered);
    }

    void identifiersAreUniqueAndFindTheirType()
    {
        QSet<QString> seen;
        for (const FileOperationType type : FileOperationType::all()) {
            QVERIFY2(!seen.contains(type.identifier()), qPrintable(type.identifier()));
            seen.insert(type.identifier());
            QCOMPARE(FileOperationType::fromIdentifier(type.identifier()), type);
            QCOMPARE(FileOperationType::fromRawValue(type.rawValue()), type);
        }
        QCOMPARE(FileOperationType::fromIdentifier("operationZip"),
                 FileOperationType(FileOperationType::zip));
        QCOMPARE(FileOperationType::fromIdentifier("operationRecycle"),
                 FileOperationType(FileOperationType::moveToTrash));
        QVERIFY(!FileOperationType::fromRawValue(10));
        QVERIFY(!FileOperationType::fromRawValue(20));
    }
};

QTEST_GUILESS_MAIN(TestFileOperations)
#include "TestFileOperations.moc"
