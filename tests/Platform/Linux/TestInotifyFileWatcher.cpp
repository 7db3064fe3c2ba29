// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Platform/Linux/InotifyFileWatcher.h"
#include "support/TestSupport.h"

#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <QMutex>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// What one watch was told, in the words a test compares; callbacks come on the watcher's thread.
class Recorder final {
public:
    FileWatcher::Callback callback()
    {
        return [this](FileWatcher::Change change) {
            QMutexLocker lock(&m_mutex);
            m_changes.append(change == FileWatcher::Change::moved ? u"moved"_s : u"deleted"_s);
        };
    }
    QStringList changes() const
    {
        QMutexLocker lock(&m_mutex);
        return m_changes;
    }

private:
    mutable QMutex m_mutex;
    QStringList m_changes;
};

// Long beside the time the kernel takes to report, so a report that is coming has come.
constexpr int quietMilliseconds = 300;

} // namespace

class TestInotifyFileWatcher final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        // Qt's trash wants the data folder to exist before it puts anything there.
        QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    }

    void changes_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("renamed") << u"rename"_s << QStringList{u"moved"_s};
        QTest::newRow("moved to another folder") << u"move"_s << QStringList{u"moved"_s};
        QTest::newRow("moved to the trash") << u"trash"_s << QStringList{u"moved"_s};
        QTest::newRow("deleted") << u"delete"_s << QStringList{u"deleted"_s};
        // Unlinked at once, freed only on closing: two kernel events, one report.
        QTest::newRow("deleted while held open") << u"delete open"_s << QStringList{u"deleted"_s};
        QTest::newRow("replaced by a rename over it") << u"replace"_s << QStringList{u"deleted"_s};
        QTest::newRow("its name unlinked, another kept") << u"unlink own link"_s << QStringList{u"deleted"_s};
        QTest::newRow("another link unlinked") << u"unlink other link"_s << QStringList();
        QTest::newRow("written") << u"write"_s << QStringList();
        QTest::newRow("permissions changed") << u"chmod"_s << QStringList();
        QTest::newRow("read") << u"read"_s << QStringList();
    }

    void changes()
    {
        QFETCH(QString, step);
        QFETCH(QStringList, expected);

        QTemporaryDir root;
        const QString path = root.filePath(u"file.txt"_s);
        QVERIFY(Test::writeFile(path, "content"));
        const QString link = root.filePath(u"link.txt"_s);
        if (step.startsWith(u"unlink"_s)) {
            QVERIFY(::link(QFile::encodeName(path).constData(), QFile::encodeName(link).constData()) == 0);
        }
        InotifyFileWatcher watcher;
        Recorder recorder;
        auto watch = watcher.watch(path, recorder.callback());
        QVERIFY(watch);

        int heldOpen = -1;
        if (step == u"rename"_s) {
            QVERIFY(QFile::rename(path, root.filePath(u"renamed.txt"_s)));
        } else if (step == u"move"_s) {
            QVERIFY(QDir().mkdir(root.filePath(u"elsewhere"_s)));
            QVERIFY(QFile::rename(path, root.filePath(u"elsewhere/file.txt"_s)));
        } else if (step == u"trash"_s) {
            QVERIFY(QFile::moveToTrash(path));
        } else if (step == u"delete"_s) {
            QVERIFY(QFile::remove(path));
        } else if (step == u"delete open"_s) {
            heldOpen = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
            QVERIFY(heldOpen >= 0);
            QVERIFY(QFile::remove(path));
        } else if (step == u"replace"_s) {
            const QString replacement = root.filePath(u".file.txt.new"_s);
            QVERIFY(Test::writeFile(replacement, "new content"));
            QVERIFY(::rename(QFile::encodeName(replacement).constData(),
                             QFile::encodeName(path).constData()) == 0);
        } else if (step == u"unlink own link"_s) {
            QVERIFY(QFile::remove(path));
        } else if (step == u"unlink other link"_s) {
            QVERIFY(QFile::remove(link));
        } else if (step == u"write"_s) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::Append) && file.write("more") == 4);
        } else if (step == u"chmod"_s) {
            QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        } else if (step == u"read"_s) {
            QCOMPARE(Test::readFile(path), QByteArray("content"));
        }

        if (!expected.isEmpty()) {
            QTRY_COMPARE(recorder.changes(), expected);
        }
        if (heldOpen >= 0) {
            ::close(heldOpen);
        }
        QTest::qWait(quietMilliseconds);
        QCOMPARE(recorder.changes(), expected);
    }

    void missingFileCannotBeWatched()
    {
        QTemporaryDir root;
        InotifyFileWatcher watcher;
        Recorder recorder;
        const QString path = root.filePath(u"missing.txt"_s);
        const auto watch = watcher.watch(path, recorder.callback());
        QVERIFY(!watch);
        QVERIFY(!watch.error().limitReached);
        QVERIFY(watch.error().description().contains(path));
    }

    void watchesOfOneFileAreSeparate()
    {
        QTemporaryDir root;
        const QString path = root.filePath(u"shared.txt"_s);
        QVERIFY(Test::writeFile(path, "content"));
        InotifyFileWatcher watcher;
        Recorder kept;
        Recorder ended;
        const auto keptWatch = watcher.watch(path, kept.callback());
        auto endedWatch = watcher.watch(path, ended.callback());
        QVERIFY(keptWatch && endedWatch);

        // The kernel has one watch for the inode; ending one user's must not end the other's.
        endedWatch->reset();
        QVERIFY(QFile::rename(path, root.filePath(u"renamed.txt"_s)));
        QTRY_COMPARE(kept.changes(), QStringList{u"moved"_s});
        QTest::qWait(quietMilliseconds);
        QVERIFY(ended.changes().isEmpty());
    }

    void aCallbackMayEndItsOwnWatch()
    {
        QTemporaryDir root;
        const QString path = root.filePath(u"once.txt"_s);
        QVERIFY(Test::writeFile(path, "content"));
        InotifyFileWatcher watcher;
        QMutex mutex;
        int calls = 0;
        std::unique_ptr<FileWatcher::Watch> watch;
        {
            QMutexLocker lock(&mutex);
            auto made = watcher.watch(path, [&](FileWatcher::Change) {
                QMutexLocker lock(&mutex);
                ++calls;
                watch.reset();
            });
            QVERIFY(made);
            watch = std::move(*made);
        }
        QVERIFY(QFile::rename(path, root.filePath(u"moved.txt"_s)));
        QTRY_VERIFY([&] {
            QMutexLocker lock(&mutex);
            return calls == 1 && !watch;
        }());
        // Nothing more comes once it has ended, and the watcher still serves others.
        QVERIFY(QFile::remove(root.filePath(u"moved.txt"_s)));
        const QString other = root.filePath(u"other.txt"_s);
        QVERIFY(Test::writeFile(other, "x"));
        Recorder recorder;
        const auto otherWatch = watcher.watch(other, recorder.callback());
        QVERIFY(otherWatch);
        QVERIFY(QFile::remove(other));
        QTRY_COMPARE(recorder.changes(), QStringList{u"deleted"_s});
        QMutexLocker lock(&mutex);
        QCOMPARE(calls, 1);
    }
};

QTEST_GUILESS_MAIN(TestInotifyFileWatcher)
#include "TestInotifyFileWatcher.moc"
