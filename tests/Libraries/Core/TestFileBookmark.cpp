// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/FileBookmark.h"
#include "Libraries/Core/URL.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Kind = FileBookmark::Error::Kind;

class TestFileBookmark final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        // The home trash is only made inside an existing data folder.
        QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)));
        m_original = home(u"work/project/report.txt"_s);
    }

    void init()
    {
        for (const char* folder : {"work/project/sibling", "work/other/deep", "Documents/archive"}) {
            QVERIFY(QDir().mkpath(home(QLatin1String(folder))));
        }
        QVERIFY(Test::writeFile(m_original, "first draft"));
    }

    void cleanup()
    {
        const QString trash =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Trash"_s;
        for (const QString& folder : {home(u"work"_s), home(u"Documents"_s), trash}) {
            QDir(folder).removeRecursively();
        }
    }

    void resolve_data()
    {
        // What happens to the file: a new place relative to home, or <edited>, <trashed>, <folder trashed>,
        // <folder renamed>, <deleted>, <replaced>. Expected relative to home, or <trash> for where the trash
        // put it; empty expects notFound.
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("stale");

        const QString original = u"work/project/report.txt"_s;
        QTest::newRow("unmoved") << QString() << original << false;
        QTest::newRow("edited in place") << u"<edited>"_s << original << false;
        // Each place is reached only through one step of the search: the old folder, a child of a folder
        // above it, a child of a user folder.
        for (const QString& place :
             {u"work/project/renamed.txt"_s, u"work/other/report.txt"_s, u"Documents/archive/report.txt"_s}) {
            QTest::addRow("moved to %s", qPrintable(place)) << place << place << true;
        }
        QTest::newRow("folder renamed") << u"<folder renamed>"_s << u"work/renamed/report.txt"_s << true;
        QTest::newRow("trashed") << u"<trashed>"_s << u"<trash>"_s << true;
        QTest::newRow("folder trashed") << u"<folder trashed>"_s << u"<trash>/report.txt"_s << true;
        QTest::newRow("below a sibling's child") << u"work/other/deep/report.txt"_s << QString() << false;
        QTest::newRow("deleted") << u"<deleted>"_s << QString() << false;
        // ext4 tends to give the freed inode number straight to the new file: only the birth time differs.
        QTest::newRow("replaced at the same path") << u"<replaced>"_s << QString() << false;
    }

    void resolve()
    {
        QFETCH(QString, change);
        QFETCH(QString, expected);
        QFETCH(bool, stale);

        const QByteArray bookmark = bookmarkOriginal();
        QVERIFY(!bookmark.isEmpty());
        QString trashed;
        if (change == u"<edited>"_s) {
            QVERIFY(Test::writeFile(m_original, "second, longer draft"));
        } else if (change == u"<trashed>"_s || change == u"<folder trashed>"_s) {
            QFile file(change == u"<trashed>"_s ? m_original : home(u"work/project"_s));
            QVERIFY2(file.moveToTrash(), qPrintable(file.errorString()));
            trashed = file.fileName();
            QVERIFY(URL::isInTrash(QUrl::fromLocalFile(trashed)));
        } else if (change == u"<folder renamed>"_s) {
            QVERIFY(QFile::rename(home(u"work/project"_s), home(u"work/renamed"_s)));
        } else if (change == u"<deleted>"_s || change == u"<replaced>"_s) {
            QVERIFY(QFile::remove(m_original));
            QVERIFY(change == u"<deleted>"_s || Test::writeFile(m_original, "someone else's file"));
        } else if (!change.isEmpty()) {
            QVERIFY(QFile::rename(m_original, home(change)));
        }

        const auto resolution = FileBookmark::resolve(bookmark);
        if (expected.isEmpty()) {
            QVERIFY(!resolution.has_value());
            QCOMPARE(resolution.error().kind, Kind::notFound);
            QCOMPARE(resolution.error().path, m_original);
            return;
        }
        QVERIFY2(resolution.has_value(), Test::failureText(resolution).constData());
        const QString path = expected.startsWith(u"<trash>"_s) ? trashed + expected.mid(7) : home(expected);
        QCOMPARE(resolution->url, QUrl::fromLocalFile(path));
        QCOMPARE(resolution->isStale, stale);
    }

    void unreadable_data()
    {
        QTest::addColumn<QString>("locked");
        QTest::addColumn<QString>("expected"); // empty expects the unreadable error
        // The file itself cannot be looked at: a different answer from "gone".
        QTest::newRow("its folder") << u"work/project"_s << QString();
        // A folder looked at before the one the file went to is skipped, not fatal.
        QTest::newRow("a folder on the way") << u"work/project/sibling"_s << u"work/other/report.txt"_s;
    }

    void unreadable()
    {
        QFETCH(QString, locked);
        QFETCH(QString, expected);
        const QByteArray bookmark = bookmarkOriginal();
        if (!expected.isEmpty()) {
            QVERIFY(QFile::rename(m_original, home(expected)));
        }
        std::expected<FileBookmark::Resolution, FileBookmark::Error> resolution;
        {
            Test::UnreadableFolder unreadable(home(locked));
            if (!unreadable.isEnforced()) {
                QSKIP("Folder permissions are not enforced for this process");
            }
            resolution = FileBookmark::resolve(bookmark);
        }
        if (expected.isEmpty()) {
            QVERIFY(!resolution.has_value());
            QCOMPARE(resolution.error().kind, Kind::unreadable);
        } else {
            QVERIFY2(resolution.has_value(), Test::failureText(resolution).constData());
            QCOMPARE(resolution->url, QUrl::fromLocalFile(home(expected)));
        }
    }

    void createFails()
    {
        const auto missing = FileBookmark::create(QUrl::fromLocalFile(home(u"never-written.txt"_s)));
        QVERIFY(!missing.has_value());
        QCOMPARE(missing.error().kind, Kind::notFound);
        const auto remote = FileBookmark::create(QUrl(u"https://example.org/report.txt"_s));
        QVERIFY(!remote.has_value());
        QCOMPARE(remote.error().kind, Kind::invalidData);
    }

    void malformedBytes_data()
    {
        QTest::addColumn<QByteArray>("data");
        // Runs before init(), so it brings its own file.
        const QString source = home(u"data-source.txt"_s);
        QVERIFY(Test::writeFile(source, "bytes"));
        const QByteArray valid = FileBookmark::create(QUrl::fromLocalFile(source)).value_or(QByteArray());
        QVERIFY(!valid.isEmpty());

        QByteArray newer = valid;
        newer[5] = char(newer.at(5) + 1);
        QByteArray flipped = valid;
        flipped[20] = char(flipped.at(20) ^ 0x40);
        // A correct checksum over a record one byte too long: only the length check can catch it.
        QByteArray padded = valid.left(valid.size() - 2) + '\0';
        const quint16 sum = qChecksum(padded);
        padded.append(char(sum >> 8)).append(char(sum & 0xff));

        // Every cut-short record is left to everyTruncationFails.
        QTest::newRow("text") << QByteArray("file:///home/user/report.txt");
        QTest::newRow("newer format") << newer;
        QTest::newRow("flipped bit") << flipped;
        QTest::newRow("padded record") << padded;
    }

    void malformedBytes()
    {
        QFETCH(QByteArray, data);
        const auto resolution = FileBookmark::resolve(data);
        QVERIFY(!resolution.has_value());
        QCOMPARE(resolution.error().kind, Kind::invalidData);
    }

    void everyTruncationFails()
    {
        const QByteArray valid = bookmarkOriginal();
        QVERIFY(FileBookmark::decode(valid).has_value());
        for (qsizetype length = 0; length < valid.size(); ++length) {
            QVERIFY2(!FileBookmark::decode(valid.left(length)).has_value(),
                     qPrintable(QString::number(length)));
        }
    }

private:
    static QString home(const QString& relative) { return QDir::homePath() + QLatin1Char('/') + relative; }
    QByteArray bookmarkOriginal() const
    {
        return FileBookmark::create(QUrl::fromLocalFile(m_original)).value_or(QByteArray());
    }

    QString m_original;
};

QTEST_GUILESS_MAIN(TestFileBookmark)
#include "TestFileBookmark.moc"
