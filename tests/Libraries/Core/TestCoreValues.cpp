// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/AtomicFileWriter.h"
#include "Libraries/Core/PrivateFolders.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "Libraries/Core/SemanticVersion.h"
#include "Libraries/Core/StringTruncation.h"
#include "Libraries/Core/ThreadSafe.h"
#include "Libraries/Core/Unique.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <thread>
#include <vector>

using namespace Vantrope;

Q_DECLARE_METATYPE(Vantrope::TruncationPosition)

class TestCoreValues final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void versionsOrder_data()
    {
        QTest::addColumn<QString>("lower");
        QTest::addColumn<QString>("higher");
        QTest::newRow("numeric, not lexical") << QStringLiteral("1.9") << QStringLiteral("1.10");
        QTest::newRow("major beats minor") << QStringLiteral("1.99.99") << QStringLiteral("2.0");
        QTest::newRow("longer is newer when not zero") << QStringLiteral("3.1") << QStringLiteral("3.1.1");
        QTest::newRow("leading v and suffix") << QStringLiteral("v1.2-beta") << QStringLiteral("1.3+build7");
    }

    void versionsOrder()
    {
        QFETCH(QString, lower);
        QFETCH(QString, higher);
        const auto a = SemanticVersion::fromRawValue(lower);
        const auto b = SemanticVersion::fromRawValue(higher);
        QVERIFY(a && b);
        QVERIFY(*a < *b);
        QVERIFY(*b > *a);
        QVERIFY(!(*a == *b));
    }

    void versionsEqualAndInvalid()
    {
        QCOMPARE(*SemanticVersion::fromRawValue(QStringLiteral("2.4")),
                 *SemanticVersion::fromRawValue(QStringLiteral("2.4.0")));
        for (const char* bad : {"", "abc", "1..2", "1.-2", "1.x", ".1"}) {
            QVERIFY2(!SemanticVersion::fromRawValue(QString::fromLatin1(bad)), bad);
        }
    }

    void truncation_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("limit");
        QTest::addColumn<Vantrope::TruncationPosition>("position");
        QTest::addColumn<QString>("expected");

        const QString name = QStringLiteral("Quarterly report final.pdf");
        QTest::newRow("exactly fits") << name << int(name.size()) << TruncationPosition::tail << name;
        QTest::newRow("tail") << name << 10 << TruncationPosition::tail << QStringLiteral("Quarterly…");
        QTest::newRow("head") << name << 10 << TruncationPosition::head << QStringLiteral("…final.pdf");
        QTest::newRow("middle") << name << 11 << TruncationPosition::middle << QStringLiteral("Quart…l.pdf");
        QTest::newRow("limit below leader") << name << 0 << TruncationPosition::tail << QString();
        // U+1F600 is a surrogate pair; cutting through it would leave a broken character.
        QTest::newRow("surrogate kept whole")
            << QStringLiteral("ab\U0001F600cd") << 4 << TruncationPosition::tail << QStringLiteral("ab…");
        QTest::newRow("surrogate at head")
            << QStringLiteral("ab\U0001F600cd") << 4 << TruncationPosition::head << QStringLiteral("…cd");
    }

    void truncation()
    {
        QFETCH(QString, text);
        QFETCH(int, limit);
        QFETCH(Vantrope::TruncationPosition, position);
        QFETCH(QString, expected);
        const QString result = truncated(text, limit, position);
        QCOMPARE(result, expected);
        QVERIFY(result.size() <= std::max(limit, 0));
    }

    void uniqueKeepsFirstSeenOrder()
    {
        const QStringList input{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b"),
                                QStringLiteral("c"), QStringLiteral("a")};
        QCOMPARE(unique(input),
                 (QList<QString>{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")}));
        QCOMPARE(unique(QList<int>{}), QList<int>{});
    }

    void threadSafeCountsEveryWrite()
    {
        ThreadSafe<int> counter(0);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&counter] {
                for (int i = 0; i < 10000; ++i) {
                    counter.mutate([](int& value) { ++value; });
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        QCOMPARE(counter.value(), 40000);
        QCOMPARE(counter.take(), 40000);
        QCOMPARE(counter.value(), 0);
    }

    void atomicWriteReplacesWholeFiles()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("nested/deeper/store.json"));
        QVERIFY(AtomicFileWriter::write(path, "first"));
        QCOMPARE(Test::readFile(path), QByteArray("first"));
        QCOMPARE(QFileInfo(path).permissions() & 0x0077, QFileDevice::Permissions());
        // A file that others could read before is replaced by one they cannot.
        QVERIFY(QFile::setPermissions(path, QFileInfo(path).permissions() | QFileDevice::ReadGroup |
                                                QFileDevice::ReadOther));
        QVERIFY(AtomicFileWriter::write(path, "second"));
        QCOMPARE(Test::readFile(path), QByteArray("second"));
        QCOMPARE(QFileInfo(path).permissions() & 0x0077, QFileDevice::Permissions());
        // Created folders are private to the user.
        QCOMPARE(QFileInfo(dir.filePath(QStringLiteral("nested/deeper"))).permissions() & 0x0077,
                 QFileDevice::Permissions());

        const QString blocked = dir.filePath(QStringLiteral("nested/deeper/store.json/child"));
        const auto failure = AtomicFileWriter::write(blocked, "x");
        QVERIFY(!failure);
        QVERIFY(failure.error().description().contains(blocked));
        QCOMPARE(Test::readFile(path), QByteArray("second"));
    }

    void openFoldersOfOursAreClosedButNothingOutside()
    {
        QTemporaryDir dir;
        const auto open = [](const QString& path) {
            QVERIFY(QDir().mkpath(path));
            QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions(0x7755)));
        };
        const QString ours = dir.filePath(QStringLiteral("vantrope"));
        const QString users = dir.filePath(QStringLiteral("users-folder"));
        open(ours + QStringLiteral("/Snapshots/shelves/deeper"));
        open(ours + QStringLiteral("/.hidden"));
        open(users);
        QVERIFY(QFile::link(users, ours + QStringLiteral("/link")));

        PrivateFolders::tighten(ours, 2);

        const auto isPrivate = [](const QString& path) {
            return (QFileInfo(path).permissions() & 0x0077) == QFileDevice::Permissions();
        };
        for (const QString& path :
             QStringList{ours, ours + QStringLiteral("/Snapshots"),
                         ours + QStringLiteral("/Snapshots/shelves"), ours + QStringLiteral("/.hidden")}) {
            QVERIFY2(isPrivate(path), qPrintable(path));
        }
        QVERIFY(!isPrivate(ours + QStringLiteral("/Snapshots/shelves/deeper")));
        QVERIFY(!isPrivate(users));
    }

    void reservedFoldersArePrivateAndInsideTheCache()
    {
        const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
        for (auto folder : {ReservedTemporaryDirectory::textFiles, ReservedTemporaryDirectory::promises,
                            ReservedTemporaryDirectory::archives, ReservedTemporaryDirectory::shortcuts,
                            ReservedTemporaryDirectory::logs}) {
            const auto path = TemporaryDirectories::path(folder);
            QVERIFY(path);
            QVERIFY2(path->startsWith(cache + QStringLiteral("/vantrope/")), qPrintable(*path));
            QVERIFY(QFileInfo(*path).isDir());
            QCOMPARE(QFileInfo(*path).permissions() & 0x0077, QFileDevice::Permissions());
        }
    }
};

QTEST_GUILESS_MAIN(TestCoreValues)
#include "TestCoreValues.moc"
