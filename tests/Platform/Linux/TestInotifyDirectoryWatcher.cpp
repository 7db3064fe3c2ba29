// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Platform/Linux/InotifyDirectoryWatcher.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// A folder with a file and a subfolder in it, a file beside it, and a watcher of its own.
struct Fixture {
    QTemporaryDir root;
    QString folder = root.path() + u"/watched"_s;
    InotifyDirectoryWatcher watcher;

    Fixture()
    {
        QDir().mkpath(folder + u"/sub"_s);
        Test::writeFile(folder + u"/existing.txt"_s, "existing");
        Test::writeFile(root.path() + u"/outside.txt"_s, "outside");
    }

    QString path(const QString& relative) const { return folder + u'/' + relative; }

    // Watches the folder, counting its signals into `count`.
    std::unique_ptr<DirectoryWatcher::Watch> watch(int& count)
    {
        auto watch = watcher.watch(folder, [&count] { ++count; });
        return watch ? std::move(*watch) : nullptr;
    }
};

// Long beside the watcher's batching, so a signal that is coming has come.
constexpr int quietMilliseconds = 300;

} // namespace

class TestInotifyDirectoryWatcher final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void changes_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<bool>("signalled");

        QTest::newRow("file created") << u"create"_s << true;
        QTest::newRow("file deleted") << u"delete"_s << true;
        QTest::newRow("file renamed inside") << u"rename"_s << true;
        QTest::newRow("file moved in") << u"move in"_s << true;
        QTest::newRow("file moved out") << u"move out"_s << true;
        QTest::newRow("file written") << u"write"_s << true;
        QTest::newRow("permissions changed") << u"chmod"_s << true;
        QTest::newRow("folder made inside") << u"mkdir"_s << true;
        QTest::newRow("watched folder deleted") << u"delete folder"_s << true;
        QTest::newRow("watched folder moved") << u"move folder"_s << true;
        QTest::newRow("file read") << u"read"_s << false;
        // Not recursive: the subfolder's users watch it themselves.
        QTest::newRow("file created in a subfolder") << u"create in sub"_s << false;
        QTest::newRow("file beside the folder") << u"beside"_s << false;
    }

    void changes()
    {
        QFETCH(QString, step);
        QFETCH(bool, signalled);

        Fixture f;
        int count = 0;
        const auto watch = f.watch(count);
        QVERIFY(watch);

        if (step == u"create"_s) {
            QVERIFY(Test::writeFile(f.path(u"new.txt"_s), "new"));
        } else if (step == u"delete"_s) {
            QVERIFY(QFile::remove(f.path(u"existing.txt"_s)));
        } else if (step == u"rename"_s) {
            QVERIFY(QFile::rename(f.path(u"existing.txt"_s), f.path(u"renamed.txt"_s)));
        } else if (step == u"move in"_s) {
            QVERIFY(QFile::rename(f.root.filePath(u"outside.txt"_s), f.path(u"inside.txt"_s)));
        } else if (step == u"move out"_s) {
            QVERIFY(QFile::rename(f.path(u"existing.txt"_s), f.root.filePath(u"out.txt"_s)));
        } else if (step == u"write"_s) {
            QFile file(f.path(u"existing.txt"_s));
            QVERIFY(file.open(QIODevice::Append) && file.write("more") == 4);
        } else if (step == u"chmod"_s) {
            QVERIFY(QFile::setPermissions(f.path(u"existing.txt"_s), QFile::ReadOwner));
        } else if (step == u"mkdir"_s) {
            QVERIFY(QDir().mkdir(f.path(u"made"_s)));
        } else if (step == u"delete folder"_s) {
            QVERIFY(QDir(f.folder).removeRecursively());
        } else if (step == u"move folder"_s) {
            QVERIFY(QFile::rename(f.folder, f.root.filePath(u"elsewhere"_s)));
        } else if (step == u"read"_s) {
            QCOMPARE(Test::readFile(f.path(u"existing.txt"_s)), QByteArray("existing"));
        } else if (step == u"create in sub"_s) {
            QVERIFY(Test::writeFile(f.path(u"sub/deep.txt"_s), "deep"));
        } else if (step == u"beside"_s) {
            QVERIFY(Test::writeFile(f.root.filePath(u"outside.txt"_s), "changed"));
        }

        if (signalled) {
            QTRY_VERIFY(count > 0);
        } else {
            QTest::qWait(quietMilliseconds);
            QCOMPARE(count, 0);
        }
    }

    void aBurstGivesFewSignals()
    {
        Fixture f;
        int count = 0;
        const auto watch = f.watch(count);
        QVERIFY(watch);
        // Each file is a creation and a write: a thousand kernel events.
        for (int i = 0; i < 500; ++i) {
            QVERIFY(Test::writeFile(f.path(u"burst-%1"_s.arg(i)), "x"));
        }
        QTRY_VERIFY(count > 0);
        QTest::qWait(quietMilliseconds);
        QVERIFY2(count < 100, qPrintable(u"%1 signals"_s.arg(count)));
    }

    void unwatchablePaths_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << u"missing"_s;
        QTest::newRow("a file") << u"outside.txt"_s;
    }

    void unwatchablePaths()
    {
        QFETCH(QString, name);
        Fixture f;
        const QString path = f.root.filePath(name);
        const auto watch = f.watcher.watch(path, [] {});
        QVERIFY(!watch);
        QVERIFY(watch.error().description().contains(path));
        QVERIFY(!watch.error().reason.isEmpty());
    }

    void endedWatchesHearNothing()
    {
        Fixture f;
        int first = 0;
        int second = 0;
        auto firstWatch = f.watch(first);
        auto secondWatch = f.watch(second);
        QVERIFY(firstWatch && secondWatch);

        firstWatch.reset();
        QVERIFY(Test::writeFile(f.path(u"one.txt"_s), "1"));
        QTRY_VERIFY(second > 0);
        QTest::qWait(quietMilliseconds);
        QCOMPARE(first, 0);

        // With the last one gone the kernel's watch goes too; a new one starts afresh.
        secondWatch.reset();
        const int heard = second;
        int third = 0;
        const auto thirdWatch = f.watch(third);
        QVERIFY(thirdWatch);
        QVERIFY(Test::writeFile(f.path(u"two.txt"_s), "2"));
        QTRY_VERIFY(third > 0);
        QCOMPARE(second, heard);
    }

    void aSignalMayEndItsOwnWatch()
    {
        Fixture f;
        int ending = 0;
        int other = 0;
        std::unique_ptr<DirectoryWatcher::Watch> endingWatch;
        auto watch = f.watcher.watch(f.folder, [&] {
            ++ending;
            endingWatch.reset();
        });
        QVERIFY(watch);
        endingWatch = std::move(*watch);
        const auto otherWatch = f.watch(other);
        QVERIFY(otherWatch);

        QVERIFY(Test::writeFile(f.path(u"one.txt"_s), "1"));
        QTRY_VERIFY(other > 0);
        QCOMPARE(ending, 1);
        QVERIFY(!endingWatch);
        QVERIFY(Test::writeFile(f.path(u"two.txt"_s), "2"));
        QTRY_VERIFY(other > 1);
        QCOMPARE(ending, 1);
    }

    void aFolderMadeAgainIsWatchedAfresh()
    {
        Fixture f;
        int old = 0;
        auto oldWatch = f.watch(old);
        QVERIFY(oldWatch);
        QVERIFY(QDir(f.folder).removeRecursively());
        QTRY_VERIFY(old > 0);
        QTest::qWait(quietMilliseconds);

        // The kernel may give the new folder the descriptor the old one had.
        QVERIFY(QDir().mkpath(f.folder));
        const int oldHeard = old;
        int fresh = 0;
        const auto freshWatch = f.watch(fresh);
        QVERIFY(freshWatch);
        oldWatch.reset();
        QVERIFY(Test::writeFile(f.path(u"new.txt"_s), "new"));
        QTRY_VERIFY(fresh > 0);
        QCOMPARE(old, oldHeard);
    }
};

QTEST_GUILESS_MAIN(TestInotifyDirectoryWatcher)
#include "TestInotifyDirectoryWatcher.moc"
