#include "Domains/DirectoryObserver/FileSystemChangeObserver.h"
#include "FolderTestSupport.h"
#include "Libraries/Core/URL.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QSaveFile>
#include <QTemporaryDir>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// One observer on a fresh temporary folder, with what it reported.
struct Fixture {
    QTemporaryDir root;
    QString folder = root.path() + QStringLiteral("/watched");
    ManualClock clock;
    std::unique_ptr<FileSystemChangeObserver> observer;
    QList<QStringList> added;
    QList<FileSystemChangeObserver::Items> removed;

    Fixture()
    {
        QDir().mkpath(folder);
        observer = std::make_unique<FileSystemChangeObserver>(QUrl::fromLocalFile(folder), 50, 0.4, clock);
        observer->setOnAdded([this](const FileSystemChangeObserver::Items& items) {
            QStringList names;
            for (const DirectoryObserverItem& item : items) {
                names.append(item.name);
            }
            added.append(names);
        });
        observer->setOnRemoved([this](const FileSystemChangeObserver::Items& items) { removed.append(items); });
    }

    QString path(const QString& name) const { return folder + QLatin1Char('/') + name; }
    bool write(const QString& name, const QByteArray& data = "content") const
    {
        return Test::writeFile(path(name), data);
    }
    bool pass()
    {
        return Test::runPass(clock, [this] { return observer->passCount(); });
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

    void baselineIsNeverReported()
    {
        Fixture f;
        for (const char* name : {"one.txt", "two.txt", "three.txt"}) {
            QVERIFY(f.write(QLatin1String(name)));
        }
        QVERIFY(f.observer->start());
        QVERIFY(f.write(QStringLiteral("four.txt")));
        QVERIFY(f.pass());
        QCOMPARE(f.added, QList<QStringList>{{QStringLiteral("four.txt")}});
        QVERIFY(f.write(QStringLiteral("one.txt"), "changed"));
        QVERIFY(f.pass());
        QCOMPARE(f.added.size(), 1);
    }

    void renames_data()
    {
        QTest::addColumn<bool>("download");
        QTest::addColumn<QStringList>("names");
        // What each step reports: the file's appearance, then two renames.
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("ordinary file") << false
                                       << QStringList{u"notes.txt"_s, u"ideas.txt"_s, u"plans.txt"_s}
                                       << QStringList{u"notes.txt"_s, QString(), QString()};
        QTest::newRow("download finishing") << true
                                            << QStringList{u"setup.bin.part"_s, u"setup.bin"_s, u"old.bin"_s}
                                            << QStringList{u"setup.bin.part"_s, u"setup.bin"_s, QString()};
        QTest::newRow("download under its final name")
            << true << QStringList{u"photo.jpg"_s, u"photo-2.jpg"_s, u"photo-3.jpg"_s}
            << QStringList{u"photo.jpg"_s, u"photo-2.jpg"_s, QString()};
    }

    void renames()
    {
        QFETCH(bool, download);
        QFETCH(QStringList, names);
        QFETCH(QStringList, expected);

        Fixture f;
        QVERIFY(f.observer->start());
        // Marked before it lands in the folder, as a browser's download is from its first byte.
        const QString staging = f.root.path() + QStringLiteral("/staging");
        QVERIFY(Test::writeFile(staging, "payload"));
        if (download && !Test::markAsDownload(staging)) {
            QSKIP("The temporary folder's file system keeps no user extended attributes");
        }
        QVERIFY(QFile::rename(staging, f.path(names[0])));
        for (int step = 0; step < names.size(); ++step) {
            if (step > 0) {
                QVERIFY(QFile::rename(f.path(names[step - 1]), f.path(names[step])));
            }
            QVERIFY(f.pass());
            const QStringList reported = f.takeAdded();
            QCOMPARE(reported, expected[step].isEmpty() ? QStringList() : QStringList{expected[step]});
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
        QVERIFY(f.write(QStringLiteral("report.txt"), "first"));
        const quint64 inode = URL::systemFileNumber(QUrl::fromLocalFile(f.path(u"report.txt"_s))).value();
        QVERIFY(f.observer->start());
        if (how == u"recreate"_s) {
            QVERIFY(QFile::remove(f.path(QStringLiteral("report.txt"))));
            QVERIFY(f.pass());
            QVERIFY(f.write(QStringLiteral("report.txt"), "second"));
        } else if (how == u"swap"_s) {
            QVERIFY(QFile::remove(f.path(QStringLiteral("report.txt"))));
            QVERIFY(f.write(QStringLiteral("summary.txt"), "second"));
        } else {
            QSaveFile save(f.path(QStringLiteral("report.txt")));
            QVERIFY(save.open(QIODevice::WriteOnly));
            save.write("second");
            QVERIFY(save.commit());
            QVERIFY(URL::systemFileNumber(QUrl::fromLocalFile(f.path(u"report.txt"_s))) != inode);
        }
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), expected);
    }

    void emptyFilesAreNotRemembered()
    {
        Fixture f;
        QVERIFY(f.write(QStringLiteral("placeholder"), QByteArray()));
        QVERIFY(f.observer->start());
        // The baseline remembers empty files too, so growing before any other pass is no news.
        QVERIFY(f.write(QStringLiteral("placeholder"), "grown"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());

        // New on every pass while it is empty, however many passes a step takes.
        QVERIFY(f.write(QStringLiteral("empty.txt"), QByteArray()));
        QVERIFY(f.pass());
        QStringList reported = f.takeAdded();
        QVERIFY(!reported.isEmpty());
        reported.removeDuplicates();
        QCOMPARE(reported, QStringList{u"empty.txt"_s});
        QVERIFY(f.write(QStringLiteral("trigger-1"), "x"));
        QVERIFY(f.pass());
        reported = f.takeAdded();
        QCOMPARE(reported.count(u"trigger-1"_s), 1);
        QVERIFY(reported.contains(u"empty.txt"_s));

        // Content at last: reported one final time, then known.
        QVERIFY(f.write(QStringLiteral("empty.txt"), "now with content"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList{u"empty.txt"_s});
        QVERIFY(f.write(QStringLiteral("empty.txt"), "more"));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());
    }

    void aBurstReportsTheFirstFifty()
    {
        Fixture f;
        QVERIFY(f.observer->start());
        for (int i = 0; i < 120; ++i) {
            QVERIFY(f.write(QStringLiteral("file-%1.txt").arg(i)));
        }
        QVERIFY(f.pass());
        QStringList listingOrder;
        QDirIterator it(f.folder, QDir::Files | QDir::Hidden);
        while (it.hasNext()) {
            listingOrder.append(it.nextFileInfo().fileName());
        }
        QCOMPARE(f.added.size(), 1);
        QCOMPARE(f.added.first(), listingOrder.first(50));

        // The other seventy are known now, not reported later.
        QVERIFY(f.write(QStringLiteral("file-0.txt"), "changed"));
        QVERIFY(f.pass());
        QCOMPARE(f.added.size(), 1);
    }

    void restartTakesANewBaseline()
    {
        Fixture f;
        QVERIFY(f.observer->start());
        f.observer->stop();
        QVERIFY(!f.observer->isRunning());
        QVERIFY(f.write(QStringLiteral("while-stopped.txt")));
        QVERIFY(f.observer->start());
        QVERIFY(f.write(QStringLiteral("after.txt")));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList{u"after.txt"_s});
    }

    void watchedFolderRemoved()
    {
        Fixture f;
        QVERIFY(f.write(QStringLiteral("inside.txt")));
        QVERIFY(f.observer->start());
        QVERIFY(QDir(f.folder).removeRecursively());
        QVERIFY(f.pass());
        QCOMPARE(f.removed.size(), 1);
        QCOMPARE(f.removed.first().size(), 1);
        const DirectoryObserverItem& gone = f.removed.first().first();
        QCOMPARE(gone.url, QUrl::fromLocalFile(f.folder));
        QCOMPARE(gone.size, 0u);
        QVERIFY(f.added.isEmpty());
    }

    void refusedListingKeepsTheMemory()
    {
        Fixture f;
        QVERIFY(f.write(QStringLiteral("a.txt")));
        QVERIFY(f.write(QStringLiteral("b.txt")));
        QVERIFY(f.observer->start());
        Test::LogCapture log;
        QVERIFY(QFile::setPermissions(f.folder, QFileDevice::Permissions()));
        {
            Test::AsOrdinaryUser user;
            if (Test::AsOrdinaryUser::canList(f.folder)) {
                QFile::setPermissions(f.folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
                QSKIP("Folder permissions are not enforced for this process");
            }
            QVERIFY(f.pass());
        }
        QVERIFY(log.contains(QStringLiteral("Failed to retrieve contents of dir ")));
        QVERIFY(f.removed.isEmpty());
        QVERIFY(QFile::setPermissions(f.folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
        QVERIFY(f.pass());
        QCOMPARE(f.takeAdded(), QStringList());
    }

    void unwatchableFolder_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("missing") << u"missing"_s;
        QTest::newRow("a file") << u"file.txt"_s;
    }

    void unwatchableFolder()
    {
        QFETCH(QString, target);
        QTemporaryDir root;
        QVERIFY(Test::writeFile(root.filePath(QStringLiteral("file.txt")), "x"));
        ManualClock clock;
        FileSystemChangeObserver observer(QUrl::fromLocalFile(root.filePath(target)), 50, 0.4, clock);
        Test::LogCapture log;
        QVERIFY(!observer.start());
        QVERIFY(!observer.isRunning());
        QVERIFY(log.contains(QStringLiteral("Failed to start monitoring ")));
    }
};

QTEST_GUILESS_MAIN(TestFileSystemChangeObserver)
#include "TestFileSystemChangeObserver.moc"
