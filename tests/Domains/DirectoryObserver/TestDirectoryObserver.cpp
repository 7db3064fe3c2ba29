// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/DirectoryObserver.h"
#include "FolderTestSupport.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(Vantrope::DirectoryObserverStatus)

namespace {

struct Fixture : Test::FolderFixture {
    std::unique_ptr<DirectoryObserver> observer;
    QList<QUrl> reported;
    int reports = 0;

    explicit Fixture(bool nested = false)
    {
        observer =
            std::make_unique<DirectoryObserver>(QUrl::fromLocalFile(folder), QList<DirectoryObserverFilter>{},
                                                nested, std::nullopt, clock, watcher);
        observer->setOnChange([this](const QList<QUrl>& urls) {
            reported.append(urls);
            ++reports;
        });
    }

    QStringList watchedRelativePaths() const
    {
        QStringList paths;
        for (const QString& watched : watcher.watchedPaths()) {
            paths.append(QDir(folder).relativeFilePath(watched));
        }
        return paths;
    }
    bool mkdir(const QString& relative) const { return QDir().mkpath(path(relative)); }
    bool pass()
    {
        return Test::runPass(clock, watcher, [this] { return Test::treePasses(*observer); });
    }
    QStringList reportedRelativePaths() const
    {
        QStringList paths;
        for (const QUrl& url : reported) {
            paths.append(QDir(folder).relativeFilePath(url.toLocalFile()));
        }
        paths.sort();
        return paths;
    }
};

} // namespace

class TestDirectoryObserver final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void unfinishedAndHiddenFilesNeverPass_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("passes");

        QTest::newRow("ordinary") << u"invoice.pdf"_s << QByteArray("x") << true;
        QTest::newRow("hidden") << u".invoice.pdf"_s << QByteArray("x") << false;
        QTest::newRow("empty") << u"invoice.pdf"_s << QByteArray() << false;
        QTest::newRow("download, any case") << u"Report.DOWNLOAD"_s << QByteArray("x") << false;
        QTest::newRow("part") << u"report.part"_s << QByteArray("x") << false;
        QTest::newRow("crdownload") << u"report.crdownload"_s << QByteArray("x") << false;
        // Only ".download" ignores case; the other endings are compared as they stand.
        QTest::newRow("PART") << u"Report.PART"_s << QByteArray("x") << true;
        QTest::newRow("office lock file") << u"~$budget.xlsx"_s << QByteArray("x") << false;
        QTest::newRow("tilde-dollar inside") << u"budget~$.xlsx"_s << QByteArray("x") << true;
    }

    void unfinishedAndHiddenFilesNeverPass()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(bool, passes);

        Fixture f;
        f.observer->start();
        QVERIFY(f.write(name, content));
        QVERIFY(f.pass());
        QCOMPARE(f.reportedRelativePaths(), passes ? QStringList{name} : QStringList());
    }

    void nestedDirectories_data()
    {
        QTest::addColumn<bool>("nested");
        QTest::addColumn<int>("responders");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QStringList>("watched");
        // The directories are items too (a directory's size is not zero here); the marker of each step
        // guarantees a change at the top.
        const QStringList markers{u"step-1"_s, u"step-2"_s, u"step-3"_s};
        QTest::newRow("observed") << true << 3 << (QStringList{u"a"_s, u"a/b"_s, u"a/b/deep.txt"_s} + markers)
                                  << QStringList{u"."_s, u"a"_s, u"a/b"_s};
        QTest::newRow("not observed") << false << 1 << (QStringList{u"a"_s} + markers) << QStringList{u"."_s};
    }

    void nestedDirectories()
    {
        QFETCH(bool, nested);
        QFETCH(int, responders);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, watched);

        Fixture f(nested);
        QVERIFY(f.mkdir(u".git/objects"_s)); // hidden folders get no observer
        f.observer->start();
        QVERIFY(f.mkdir(u"a"_s) && f.write(u"step-1"_s));
        QVERIFY(f.pass());
        QVERIFY(f.mkdir(u"a/b"_s) && f.write(u"step-2"_s));
        QVERIFY(f.pass());
        QVERIFY(f.write(u"a/b/deep.txt"_s) && f.write(u"step-3"_s));
        QVERIFY(f.pass());
        expected.sort();
        QCOMPARE(f.reportedRelativePaths(), expected);
        QCOMPARE(f.observer->numberOfResponders(), responders);
        QCOMPARE(f.watchedRelativePaths(), watched);

        // A subtree that goes takes its watches along.
        if (nested) {
            QVERIFY(QDir(f.path(u"a"_s)).removeRecursively());
            // Not a pass() that counts the tree's listings: the subtree's go with it.
            f.watcher.fireAll();
            Test::settle(f.clock);
            QCOMPARE(f.watchedRelativePaths(), QStringList{u"."_s});
            QCOMPARE(f.observer->numberOfResponders(), 1);
        }
    }

    void aNewDirectoryBringsItsContentsAsBaseline()
    {
        Fixture f(true);
        f.observer->start();
        const QString staging = f.root.path() + u"/album"_s;
        QVERIFY(Test::writeFile(staging + u"/old.jpg"_s, "x"));
        QVERIFY(QFile::rename(staging, f.path(u"album"_s)));
        QVERIFY(f.pass());
        QCOMPARE(f.reportedRelativePaths(), QStringList{u"album"_s});
        f.reported.clear();
        QVERIFY(f.write(u"album/new.jpg"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.reportedRelativePaths(), QStringList{u"album/new.jpg"_s});
    }

    void theTreeStopsGrowingAtThreeHundred()
    {
        Fixture f(true);
        for (int i = 0; i < 305; ++i) {
            QVERIFY(f.mkdir(u"d%1"_s.arg(i, 3, 10, QLatin1Char('0'))));
        }
        f.observer->start();
        QCOMPARE(f.observer->numberOfResponders(), DirectoryObserver::maximumNumberOfResponders);

        QVERIFY(f.mkdir(u"refused"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.observer->numberOfResponders(), 300);
        QVERIFY(f.write(u"refused/unseen.txt"_s) && f.write(u"marker-1"_s));
        QVERIFY(f.pass());

        // The subdirectories are observed in name order, so d000 has an observer.
        QVERIFY(QDir(f.path(u"d000"_s)).removeRecursively());
        f.watcher.fireAll();
        Test::settle(f.clock);
        QCOMPARE(f.observer->numberOfResponders(), 299);
        QVERIFY(!f.watchedRelativePaths().contains(u"d000"_s));
        QVERIFY(f.mkdir(u"late"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.observer->numberOfResponders(), 300);
        QVERIFY(f.write(u"late/seen.txt"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.reportedRelativePaths(),
                 (QStringList{u"late"_s, u"late/seen.txt"_s, u"marker-1"_s, u"refused"_s}));
    }

    void determineStatus_data()
    {
        QTest::addColumn<QString>("situation");
        QTest::addColumn<DirectoryObserverStatus>("expected");
        QTest::newRow("running") << u"running"_s << DirectoryObserverStatus::active;
        QTest::newRow("never started") << u"idle"_s << DirectoryObserverStatus::stopped;
        QTest::newRow("folder deleted") << u"deleted"_s << DirectoryObserverStatus::inaccessiblePath;
        QTest::newRow("folder unreadable") << u"unreadable"_s << DirectoryObserverStatus::unauthorized;
    }

    void determineStatus()
    {
        QFETCH(QString, situation);
        QFETCH(DirectoryObserverStatus, expected);

        Fixture f;
        if (situation != u"idle"_s) {
            f.observer->start();
        }
        if (situation == u"deleted"_s) {
            QVERIFY(QDir(f.folder).removeRecursively());
            QVERIFY(f.pass());
            // The root going is not reported; the status check is what notices it.
            QCOMPARE(f.reports, 0);
            QVERIFY(f.observer->isRunning());
        }
        QSignalSpy changes(f.observer.get(), &DirectoryObserver::statusChanged);
        if (situation == u"unreadable"_s) {
            Test::UnreadableFolder unreadable(f.folder);
            if (!unreadable.isEnforced()) {
                QSKIP("Folder permissions are not enforced for this process");
            }
            f.observer->determineStatus();
        } else {
            f.observer->determineStatus();
        }
        QCOMPARE(f.observer->status(), expected);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(f.observer->isRunning(), expected == DirectoryObserverStatus::active);
    }
};

QTEST_GUILESS_MAIN(TestDirectoryObserver)
#include "TestDirectoryObserver.moc"
