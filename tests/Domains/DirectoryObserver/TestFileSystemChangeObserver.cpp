// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/FileSystemChangeObserver.h"
#include "FolderTestSupport.h"
#include "Libraries/Core/URL.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// One observer on a fresh temporary folder, with what it reported.
struct Fixture : Test::FolderFixture {
    FileSystemChangeObserver observer{QUrl::fromLocalFile(folder), 50, 400ms, clock, watcher};
    QList<QStringList> added;
    QList<FileSystemChangeObserver::Items> removed;

    Fixture()
    {
        observer.setOnAdded([this](const FileSystemChangeObserver::Items& items) {
            added.append(QStringList());
            for (const DirectoryObserverItem& item : items) {
                added.last().append(item.name);
            }
        });
        observer.setOnRemoved(
            [this](const FileSystemChangeObserver::Items& items) { removed.append(items); });
    }

    bool pass()
    {
        return Test::runPass(clock, watcher, [this] { return observer.passCount(); });
    }
    // Everything reported since the last call, sorted: the listing order is the file system's.
    QStringList takeAdded()
    {
        QStringList all;
        for (const QStringList& names : std::as_const(added)) {
            all.append(names);
        }
        added.clear();
        all.sort();
        return all;
    }
};

} // namespace

class TestFileSystemChangeObserver final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void onlyWhatComesAfterTheBaselineIsNew()
    {
        Fixture f;
        QVERIFY(f.write(u"one.txt"_s) && f.write(u"two.txt"_s) && f.write(u"three.txt"_s));
        QVERIFY(f.observer.start());
        QVERIFY(f.write(u"four.txt"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.added, QList<QStringList>{{u"four.txt"_s}});
        QVERIFY(f.write(u"one.txt"_s, "changed"));
        QVERIFY(f.pass());
        QCOMPARE(f.added.size(), 1);

        // A restart takes a new baseline: what came while stopped is not new.
        f.observer.stop();
        QVERIFY(f.write(u"while-stopped.txt"_s));
        QVERIFY(!f.watcher.fire(f.folder));
        QVERIFY(f.observer.start());
        QVERIFY(f.write(u"after.txt"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), (QStringList{u"after.txt"_s, u"four.txt"_s}));
    }

    void signalsWithinTheDelayShareOneListing()
    {
        Fixture f;
        QVERIFY(f.observer.start());
        const quint64 baseline = f.observer.passCount();
        QVERIFY(f.write(u"a.txt"_s));
        for (int i = 0; i < 5; ++i) {
            QVERIFY(f.watcher.fire(f.folder));
        }
        f.clock.advance(200ms);
        QCOMPARE(f.observer.passCount(), baseline);
        f.clock.advance(200ms);
        QCOMPARE(f.observer.passCount(), baseline + 1);
        QCOMPARE(f.takeAdded(), QStringList{u"a.txt"_s});
        f.clock.advance(10s);
        QCOMPARE(f.observer.passCount(), baseline + 1);
    }

    void renames_data()
    {
        QTest::addColumn<bool>("download");
        QTest::addColumn<QStringList>("names");
        // What each step reports: the file's appearance, then two renames.
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("ordinary file") << false << QStringList{u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}
                                       << QStringList{u"a.txt"_s, QString(), QString()};
        QTest::newRow("download finishing")
            << true << QStringList{u"setup.part"_s, u"setup.bin"_s, u"old.bin"_s}
            << QStringList{u"setup.part"_s, u"setup.bin"_s, QString()};
        QTest::newRow("download under its final name")
            << true << QStringList{u"a.jpg"_s, u"b.jpg"_s, u"c.jpg"_s}
            << QStringList{u"a.jpg"_s, u"b.jpg"_s, QString()};
    }

    void renames()
    {
        QFETCH(bool, download);
        QFETCH(QStringList, names);
        QFETCH(QStringList, expected);

        Fixture f;
        QVERIFY(f.observer.start());
        // Marked before it lands in the folder, as a download is from its first byte.
        const QString staging = f.root.path() + u"/staging"_s;
        QVERIFY(Test::writeFile(staging, "payload"));
        if (download && !Test::markAsDownload(staging)) {
            QSKIP("The temporary folder's file system keeps no user extended attributes");
        }
        for (int step = 0; step < names.size(); ++step) {
            QVERIFY(QFile::rename(step == 0 ? staging : f.path(names[step - 1]), f.path(names[step])));
            QVERIFY(f.pass());
            QCOMPARE(f.takeAdded(), expected[step].isEmpty() ? QStringList() : QStringList{expected[step]});
        }
    }

    void replacement_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QStringList>("expected");
        // An editor's save: a new inode under the old name.
        QTest::newRow("saved by replacement") << u"save"_s << QStringList();
        QTest::newRow("deleted, then created again") << u"recreate"_s << QStringList{u"report.txt"_s};
        // The new file usually gets the inode number just freed; it is no rename all the same.
        QTest::newRow("deleted, another created at once") << u"swap"_s << QStringList{u"summary.txt"_s};
    }

    void replacement()
    {
        QFETCH(QString, how);
        QFETCH(QStringList, expected);

        Fixture f;
        QVERIFY(f.write(u"report.txt"_s, "first"));
        const auto inode = URL::systemFileNumber(QUrl::fromLocalFile(f.path(u"report.txt"_s)));
        QVERIFY(f.observer.start());
        if (how == u"save"_s) {
            QSaveFile save(f.path(u"report.txt"_s));
            QVERIFY(save.open(QIODevice::WriteOnly) && save.write("second") == 6 && save.commit());
            QVERIFY(URL::systemFileNumber(QUrl::fromLocalFile(f.path(u"report.txt"_s))) != inode);
        } else {
            QVERIFY(QFile::remove(f.path(u"report.txt"_s)));
            if (how == u"recreate"_s) {
                QVERIFY(f.pass());
            }
            QVERIFY(f.write(expected.first(), "second"));
        }
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), expected);
    }

    void emptyFilesAreNotRemembered()
    {
        Fixture f;
        QVERIFY(f.write(u"placeholder"_s, QByteArray()));
        QVERIFY(f.observer.start());
        // The baseline remembers empty files too, so growing before any other pass is no news.
        QVERIFY(f.write(u"placeholder"_s, "grown"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());

        // New on every pass while it is empty, however many passes a step takes.
        QVERIFY(f.write(u"empty.txt"_s, QByteArray()));
        QVERIFY(f.pass());
        QVERIFY(f.write(u"trigger"_s, "x"));
        QVERIFY(f.pass());
        QStringList reported = f.takeAdded();
        QCOMPARE(reported.count(u"trigger"_s), 1);
        QVERIFY(reported.count(u"empty.txt"_s) >= 2);

        // Content at last: reported one final time, then known.
        QVERIFY(f.write(u"empty.txt"_s, "now with content"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList{u"empty.txt"_s});
        QVERIFY(f.write(u"empty.txt"_s, "more"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());
    }

    void aBurstReportsTheFirstFifty()
    {
        Fixture f;
        QVERIFY(f.observer.start());
        for (int i = 0; i < 120; ++i) {
            QVERIFY(f.write(u"file-%1.txt"_s.arg(i)));
        }
        QVERIFY(f.pass());
        QStringList listingOrder;
        for (QDirIterator it(f.folder, QDir::Files); it.hasNext();) {
            listingOrder.append(it.nextFileInfo().fileName());
        }
        QCOMPARE(f.added, QList<QStringList>{listingOrder.first(50)});

        // The other seventy are known now, not reported later.
        QVERIFY(f.write(u"file-0.txt"_s, "changed"));
        QVERIFY(f.pass());
        QCOMPARE(f.added.size(), 1);
    }

    void watchedFolderRemoved()
    {
        Fixture f;
        QVERIFY(f.write(u"inside.txt"_s));
        QVERIFY(f.observer.start());
        QVERIFY(QDir(f.folder).removeRecursively());
        QVERIFY(f.pass());
        QCOMPARE(f.removed.size(), 1);
        QCOMPARE(f.removed.first().size(), 1);
        QCOMPARE(f.removed.first().first().url, QUrl::fromLocalFile(f.folder));
        QCOMPARE(f.removed.first().first().size, 0u);
        QVERIFY(f.added.isEmpty());
    }

    void refusedListingKeepsTheMemory()
    {
        Fixture f;
        QVERIFY(f.write(u"a.txt"_s) && f.write(u"b.txt"_s));
        QVERIFY(f.observer.start());
        Test::LogCapture log;
        {
            Test::UnreadableFolder unreadable(f.folder);
            if (!unreadable.isEnforced()) {
                QSKIP("Folder permissions are not enforced for this process");
            }
            QVERIFY(f.pass());
        }
        QVERIFY(log.contains(u"Failed to retrieve contents of dir "_s));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());
        QVERIFY(f.removed.isEmpty());
    }

    void unwatchableFolders()
    {
        QTemporaryDir root;
        QVERIFY(Test::writeFile(root.filePath(u"file.txt"_s), "x"));
        ManualClock clock;
        Test::FakeDirectoryWatcher watcher;
        for (const QString& target : {u"missing"_s, u"file.txt"_s}) {
            FileSystemChangeObserver observer(QUrl::fromLocalFile(root.filePath(target)), 50, 400ms, clock,
                                              watcher);
            Test::LogCapture log;
            QVERIFY(!observer.start());
            QVERIFY(!observer.isRunning());
            QVERIFY(log.contains(u"Failed to start monitoring "_s));
        }
    }
};

QTEST_GUILESS_MAIN(TestFileSystemChangeObserver)
#include "TestFileSystemChangeObserver.moc"
