// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/URL.h"
#include "support/TestSupport.h"

#include <cerrno>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Vantrope;
using namespace Qt::StringLiterals;

class TestURL final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        QVERIFY(m_dir.isValid());
        // The home trash is only made inside an existing data folder.
        QVERIFY(QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)));
    }

    void isWithin_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<bool>("expected");
        QTest::newRow("same") << u"/a/b"_s << u"/a/b"_s << true;
        QTest::newRow("child") << u"/a/b/c"_s << u"/a/b"_s << true;
        QTest::newRow("string prefix is not a folder") << u"/a/bc"_s << u"/a/b"_s << false;
        QTest::newRow("trailing slashes") << u"/a/b/"_s << u"/a/b/"_s << true;
        QTest::newRow("dot-dot leaves") << u"/a/b/../c"_s << u"/a/b"_s << false;
        QTest::newRow("everything is within root") << u"/a"_s << u"/"_s << true;
    }

    void isWithin()
    {
        QFETCH(QString, path);
        QFETCH(QString, folder);
        QFETCH(bool, expected);
        QCOMPARE(URL::isWithin(QUrl::fromLocalFile(path), QUrl::fromLocalFile(folder)), expected);
    }

    void isInTrash_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("expected");

        const QString home =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Trash"_s;
        // The mount point as the system reports it, independent of how the code under test finds it.
        QString top = QStorageInfo(m_dir.path()).rootPath();
        if (top == QLatin1String("/")) {
            top.clear();
        }
        const QString uid = QString::number(::getuid());
        QTest::newRow("home trash") << home + u"/files/report.txt"_s << true;
        QTest::newRow("inside a trashed folder") << home + u"/files/folder/report.txt"_s << true;
        QTest::newRow("the files folder itself") << home + u"/files"_s << false;
        QTest::newRow("home trash info") << home + u"/info/report.txt.trashinfo"_s << false;
        QTest::newRow("top .Trash/uid") << top + u"/.Trash/"_s + uid + u"/files/report.txt"_s << true;
        QTest::newRow("top .Trash-uid") << top + u"/.Trash-"_s + uid + u"/files/report.txt"_s << true;
        QTest::newRow("another user's trash") << top + u"/.Trash-"_s + uid + u"1/files/report.txt"_s << false;
        QTest::newRow("below the mount point") << path(u".Trash-"_s + uid + u"/files/report.txt"_s) << false;
    }

    void isInTrash()
    {
        QFETCH(QString, path);
        QFETCH(bool, expected);
        QCOMPARE(URL::isInTrash(QUrl::fromLocalFile(path)), expected);
    }

    void quarantine_data()
    {
        QTest::addColumn<QByteArray>("attribute"); // "-" for a file that does not exist
        QTest::addColumn<bool>("expected");
        QTest::newRow("origin") << QByteArray("user.xdg.origin.url") << true;
        QTest::newRow("referrer") << QByteArray("user.xdg.referrer.url") << true;
        QTest::newRow("unrelated") << QByteArray("user.xdg.comment") << false;
        QTest::newRow("none") << QByteArray() << false;
        QTest::newRow("missing file") << QByteArray("-") << false;
    }

    void quarantine()
    {
        QFETCH(QByteArray, attribute);
        QFETCH(bool, expected);

        const QUrl file =
            QUrl::fromLocalFile(path(u"download-"_s + QString::fromLatin1(QTest::currentDataTag())));
        if (attribute == "-") {
            QVERIFY(!URL::extendedAttributes(file).has_value());
            QVERIFY(!URL::isQuarantined(file));
            return;
        }
        QVERIFY(Test::writeFile(file.toLocalFile(), "bytes"));
        const QByteArray native = QFile::encodeName(file.toLocalFile());
        if (!attribute.isEmpty() &&
            ::setxattr(native.constData(), attribute.constData(), "https://example.org", 19, 0) != 0) {
            if (errno == ENOTSUP) {
                QSKIP("The temporary folder's file system does not keep user extended attributes");
            }
            QFAIL("setxattr failed");
        }
        QCOMPARE(URL::extendedAttributes(file),
                 attribute.isEmpty() ? QStringList() : QStringList{QString::fromLatin1(attribute)});
        QCOMPARE(URL::isQuarantined(file), expected);
    }

    void subdirectories()
    {
        const QString root = path(u"tree"_s);
        for (const char* folder : {"b", "a", ".hidden", "c/inner"}) {
            QVERIFY(QDir().mkpath(root + QLatin1Char('/') + QLatin1String(folder)));
        }
        QVERIFY(Test::writeFile(root + u"/file.txt"_s, "x"));
        QVERIFY(QFile::link(root + u"/a"_s, root + u"/link"_s));

        QList<QUrl> expected;
        for (const char* name : {".hidden", "a", "b", "c"}) {
            expected.append(QUrl::fromLocalFile(root + QLatin1Char('/') + QLatin1String(name)));
        }
        QCOMPARE(URL::subdirectories(QUrl::fromLocalFile(root)), expected);
        QVERIFY(URL::subdirectories(QUrl::fromLocalFile(root + u"/missing"_s)).isEmpty());
    }

    void systemFileNumberSurvivesRename()
    {
        const QString first = path(u"numbered.txt"_s);
        const QString renamed = path(u"renamed.txt"_s);
        const QString other = path(u"other.txt"_s);
        QVERIFY(Test::writeFile(first, "1") && Test::writeFile(other, "2"));
        const auto number = URL::systemFileNumber(QUrl::fromLocalFile(first));
        QVERIFY(number.has_value());
        QVERIFY(QFile::rename(first, renamed));
        QCOMPARE(URL::systemFileNumber(QUrl::fromLocalFile(renamed)), number);
        QVERIFY(URL::systemFileNumber(QUrl::fromLocalFile(other)) != number);
        QVERIFY(!URL::systemFileNumber(QUrl::fromLocalFile(first)).has_value());
    }

    void groupContainerIsPrivate()
    {
        const auto container = URL::groupContainer();
        QCOMPARE(container,
                 QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/vantrope"_s);
        QVERIFY(container->startsWith(QDir::homePath()));
        struct stat info {};
        QCOMPARE(::stat(QFile::encodeName(*container).constData(), &info), 0);
        QCOMPARE(info.st_mode & 0777, mode_t(0700));
    }

private:
    QString path(const QString& relative) const { return m_dir.path() + QLatin1Char('/') + relative; }

    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestURL)
#include "TestURL.moc"
