// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/TemporaryDataSanitizer.h"
#include "Libraries/Core/ManualClock.h"
#include "Models/Draggable/DraggableStorage.h"
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "support/TestSupport.h"

#include <limits>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Makes a file or folder look written `age` ago, as the kernel would have stamped it.
bool age(const QString& path, std::chrono::seconds age)
{
    const QDateTime then = QDateTime::currentDateTimeUtc().addSecs(-age.count());
    QFile file(path);
    if (QFileInfo(path).isDir()) {
        return QProcess::execute(u"touch"_s, {u"-d"_s, then.toString(Qt::ISODate), path}) == 0;
    }
    return file.open(QIODevice::ReadWrite) && file.setFileTime(then, QFileDevice::FileModificationTime);
}

constexpr int neverRan = std::numeric_limits<int>::min();

struct Fixture {
    QTemporaryDir root;
    ManualClock clock{QDateTime::currentDateTimeUtc()};
    Preferences preferences{std::make_unique<MemoryPreferenceStorage>()};
    TemporaryDataSanitizer sanitizer{{text(), archives()}, preferences, clock};

    QString text() const { return root.path() + u"/Text"_s; }
    QString archives() const { return root.path() + u"/Archives"_s; }
    // Writes `relative` under the root, old enough that nobody writes it any more.
    bool old(const QString& relative)
    {
        const QString path = root.path() + u'/' + relative;
        if (!Test::writeFile(path, "content") || !age(path, 1h)) {
            return false;
        }
        return age(QFileInfo(path).path(), 1h);
    }
    bool exists(const QString& relative) const { return QFileInfo::exists(root.path() + u'/' + relative); }
};

} // namespace

class TestTemporaryDataSanitizer final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    // Direct entries of the folders are judged whole: one that holds a protected file stays with all it
    // holds.
    void removesOnlyWhatNoShelfHolds_data()
    {
        QTest::addColumn<QStringList>("entries");
        QTest::addColumn<QStringList>("protectedEntries");
        QTest::addColumn<QStringList>("kept");
        QTest::addColumn<QStringList>("removed");

        QTest::newRow("an orphan goes, a recent shelf's text file stays")
            << QStringList{u"Text/1111/note.txt"_s, u"Text/2222/old.txt"_s}
            << QStringList{u"Text/1111/note.txt"_s} << QStringList{u"Text/1111/note.txt"_s}
            << QStringList{u"Text/2222"_s};
        QTest::newRow("a protected file keeps the files beside it in its folder")
            << QStringList{u"Text/1111/note.txt"_s, u"Text/1111/draft.txt"_s}
            << QStringList{u"Text/1111/note.txt"_s}
            << QStringList{u"Text/1111/note.txt"_s, u"Text/1111/draft.txt"_s} << QStringList{};
        QTest::newRow("a protected direct entry, and a name that only begins like it")
            << QStringList{u"Archives/a.zip"_s, u"Archives/a.zip.old"_s} << QStringList{u"Archives/a.zip"_s}
            << QStringList{u"Archives/a.zip"_s} << QStringList{u"Archives/a.zip.old"_s};
        QTest::newRow("nothing protected: every folder is emptied, not removed")
            << QStringList{u"Text/1/a.txt"_s, u"Archives/.hidden"_s} << QStringList{}
            << QStringList{u"Text"_s, u"Archives"_s} << QStringList{u"Text/1"_s, u"Archives/.hidden"_s};
        QTest::newRow("a file outside the folders protects nothing inside")
            << QStringList{u"Text/1/a.txt"_s, u"Elsewhere/a.txt"_s} << QStringList{u"Elsewhere/a.txt"_s}
            << QStringList{u"Elsewhere/a.txt"_s} << QStringList{u"Text/1"_s};
    }

    void removesOnlyWhatNoShelfHolds()
    {
        QFETCH(QStringList, entries);
        QFETCH(QStringList, protectedEntries);
        QFETCH(QStringList, kept);
        QFETCH(QStringList, removed);
        Fixture f;
        for (const QString& entry : entries) {
            QVERIFY(f.old(entry));
        }
        QList<QUrl> urls;
        for (const QString& entry : protectedEntries) {
            // Spelled otherwise than the listing spells it.
            urls.append(QUrl::fromLocalFile(f.root.path() + u"/./"_s + entry));
        }
        const auto result = f.sanitizer.sanitizeDirectories(urls);
        for (const QString& entry : kept) {
            QVERIFY2(f.exists(entry), qPrintable(entry));
        }
        for (const QString& entry : removed) {
            QVERIFY2(!f.exists(entry), qPrintable(entry));
        }
        QCOMPARE(result.removed, removed.size());
        QCOMPARE(result.failed, 0);
    }

    void leavesWhatIsStillBeingWritten_data()
    {
        QTest::addColumn<bool>("openForWriting");
        QTest::addColumn<int>("secondsOld");
        QTest::addColumn<bool>("kept");
        QTest::newRow("written a moment ago") << false << 5 << true;
        QTest::newRow("open for writing, untouched for long") << true << 3600 << true;
        QTest::newRow("closed and old") << false << 3600 << false;
    }

    void leavesWhatIsStillBeingWritten()
    {
        QFETCH(bool, openForWriting);
        QFETCH(int, secondsOld);
        QFETCH(bool, kept);
        Fixture f;
        const QString path = f.text() + u"/download/growing.bin"_s;
        QVERIFY(Test::writeFile(path, "partial"));
        QProcess writer;
        if (openForWriting) {
            // Another program holding the file open, as a slow download does.
            writer.start(u"sh"_s, {u"-c"_s, u"exec 3>>\"$0\"; echo ready; sleep 30"_s, path});
            QVERIFY(writer.waitForReadyRead(5000));
        }
        QVERIFY(age(path, std::chrono::seconds(secondsOld)));
        QVERIFY(age(f.text() + u"/download"_s, std::chrono::seconds(secondsOld)));

        const auto result = f.sanitizer.sanitizeDirectories({});
        writer.kill();
        writer.waitForFinished();
        QCOMPARE(QFileInfo::exists(path), kept);
        QCOMPARE(result.busy, kept ? 1 : 0);
    }

    void runsAtMostEveryTwoHours_data()
    {
        QTest::addColumn<int>("minutesSinceLastRun");
        QTest::addColumn<bool>("runs");
        QTest::newRow("never ran") << neverRan << true;
        QTest::newRow("an hour ago") << 60 << false;
        QTest::newRow("just under two hours ago") << 119 << false;
        QTest::newRow("just over two hours ago") << 121 << true;
        QTest::newRow("the clock set back an hour") << -60 << false;
        QTest::newRow("stored under a clock a day ahead") << -24 * 60 << true;
    }

    void runsAtMostEveryTwoHours()
    {
        QFETCH(int, minutesSinceLastRun);
        QFETCH(bool, runs);
        Fixture f;
        if (minutesSinceLastRun != neverRan) {
            f.preferences.setValue(PreferenceKeys::lastTemporaryDataSanitationDate,
                                   f.clock.currentDateTime().addSecs(-60 * minutesSinceLastRun));
        }
        QVERIFY(f.old(u"Text/orphan/a.txt"_s));
        std::optional<TemporaryDataSanitizer::Result> result;
        f.sanitizer.startIfDue({}, [&result](const TemporaryDataSanitizer::Result& done) { result = done; });
        if (runs) {
            QTRY_VERIFY(result.has_value());
            QCOMPARE(f.preferences.value(PreferenceKeys::lastTemporaryDataSanitationDate),
                     f.clock.currentDateTime());
        } else {
            QTest::qWait(200);
            QVERIFY(!result);
        }
        QCOMPARE(f.exists(u"Text/orphan"_s), !runs);
    }

    void thumbnailsOfShelvesNoLongerStoredGo()
    {
        Fixture f;
        const QString pictures = f.root.path() + u"/Snapshots"_s;
        // Identifiers are percent-encoded in the names.
        for (const QString& name : {u"A-1.png"_s, u"B%2F2.png"_s, u"gone.png"_s, u"notes.txt"_s}) {
            QVERIFY(f.old(u"Snapshots/"_s + name));
        }
        std::optional<TemporaryDataSanitizer::Result> result;
        f.sanitizer.purge({{}, {u"A-1"_s, u"B/2"_s}, pictures},
                          [&result](const TemporaryDataSanitizer::Result& done) { result = done; });
        QTRY_VERIFY(result.has_value());
        QCOMPARE(QDir(pictures).entryList(QDir::Files, QDir::Name),
                 (QStringList{u"A-1.png"_s, u"B%2F2.png"_s, u"notes.txt"_s}));
    }

    void theProgramsOwnTextFileLayoutIsProtected()
    {
        // A text item's file where the program itself puts it, in a folder named after its content.
        const auto note =
            DraggableStorage::filePath(ReservedTemporaryDirectory::textFiles, u"note.txt"_s, "hello");
        const auto other =
            DraggableStorage::filePath(ReservedTemporaryDirectory::textFiles, u"old.txt"_s, "bye");
        QVERIFY(note && other);
        QVERIFY(Test::writeFile(*note, "hello") && Test::writeFile(*other, "bye"));
        QVERIFY(age(*other, 3h) && age(QFileInfo(*other).path(), 3h));
        ManualClock clock{QDateTime::currentDateTimeUtc()};
        Preferences preferences{std::make_unique<MemoryPreferenceStorage>()};
        TemporaryDataSanitizer sanitizer(TemporaryDataSanitizer::reservedDirectories(), preferences, clock);
        QVERIFY(sanitizer.directories().contains(QFileInfo(QFileInfo(*note).path()).path()));

        sanitizer.sanitizeDirectories({QUrl::fromLocalFile(*note)});
        QCOMPARE(Test::readFile(*note), QByteArray("hello"));
        QVERIFY(!QFileInfo::exists(*other));
    }

    // Results of file operations go into a run folder each; a folder whose file a shelf holds stays.
    void operationRunFoldersStayWhileAShelfHoldsTheirFiles()
    {
        const auto operations = TemporaryDirectories::path(ReservedTemporaryDirectory::operations);
        QVERIFY(operations);
        const QString kept = *operations + u"/20261125-101010-aaaa/photo.webp"_s;
        const QString gone = *operations + u"/20261124-090909-bbbb/old.webp"_s;
        QVERIFY(Test::writeFile(kept, "kept") && Test::writeFile(gone, "gone"));
        for (const QString& path : {kept, gone}) {
            QVERIFY(age(path, 3h) && age(QFileInfo(path).path(), 3h));
        }
        ManualClock clock{QDateTime::currentDateTimeUtc()};
        Preferences preferences{std::make_unique<MemoryPreferenceStorage>()};
        TemporaryDataSanitizer sanitizer(TemporaryDataSanitizer::reservedDirectories(), preferences, clock);

        sanitizer.sanitizeDirectories({QUrl::fromLocalFile(kept)});
        QCOMPARE(Test::readFile(kept), QByteArray("kept"));
        QVERIFY(!QFileInfo::exists(QFileInfo(gone).path()));
    }
};

QTEST_GUILESS_MAIN(TestTemporaryDataSanitizer)
#include "TestTemporaryDataSanitizer.moc"
