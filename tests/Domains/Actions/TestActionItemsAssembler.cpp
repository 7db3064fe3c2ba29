// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/ActionItemsAssembler.h"
#include "FakeArchiver.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using Strategy = ActionItemsAssembler::Strategy;

Q_DECLARE_METATYPE(ActionItemsAssembler::Strategy)

using Vantrope::Test::filesUnder;

// Zipping before an action runs, with real files and folders and an archiver that writes real files.
class TestActionItemsAssembler final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_input = std::make_unique<QTemporaryDir>();
        m_work = std::make_unique<QTemporaryDir>();
        m_archiver = std::make_shared<Test::FakeArchiver>();
    }

    void cleanup()
    {
        m_archiver->held = false;
        m_archiver->waitForDone();
    }

    void strategies_data()
    {
        QTest::addColumn<Strategy>("strategy");
        // Names ending in "/" are folders (with a file inside).
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QList<QStringList>>("archived");

        const auto l = [](std::initializer_list<const char*> values) {
            QStringList list;
            for (const char* value : values) {
                list.append(QString::fromUtf8(value));
            }
            return list;
        };
        QTest::newRow("zip, one file passes untouched")
            << Strategy::zipAllFiles << l({"a.txt"}) << l({"a.txt"}) << QList<QStringList>();
        QTest::newRow("zip, one folder is archived")
            << Strategy::zipAllFiles << l({"docs/"}) << l({"docs.zip"}) << QList<QStringList>{l({"docs"})};
        QTest::newRow("zip, two files become one archive")
            << Strategy::zipAllFiles << l({"a.txt", "b.txt"}) << l({"Archive.zip"})
            << QList<QStringList>{l({"a.txt", "b.txt"})};
        QTest::newRow("zip, a file and a folder become one archive")
            << Strategy::zipAllFiles << l({"docs/", "a.txt"}) << l({"Archive.zip"})
            << QList<QStringList>{l({"docs", "a.txt"})};
        QTest::newRow("zipDirectories, only files pass untouched")
            << Strategy::zipDirectories << l({"a.txt", "b.png"}) << l({"a.txt", "b.png"})
            << QList<QStringList>();
        QTest::newRow("zipDirectories, folders are replaced in place")
            << Strategy::zipDirectories << l({"a.txt", "docs/", "b.txt", "pics/"})
            << l({"a.txt", "docs.zip", "b.txt", "pics.zip"}) << QList<QStringList>{l({"docs"}), l({"pics"})};
        QTest::newRow("zipDirectories, same-named folders give two archives")
            << Strategy::zipDirectories << l({"one/docs/", "two/docs/"}) << l({"docs.zip", "docs.zip"})
            << QList<QStringList>{l({"docs"}), l({"docs"})};
    }

    void strategies()
    {
        QFETCH(Strategy, strategy);
        QFETCH(QStringList, inputs);
        QFETCH(QStringList, expected);
        QFETCH(QList<QStringList>, archived);

        const QList<QUrl> urls = makeInputs(inputs);
        auto assembler = std::make_unique<ActionItemsAssembler>(urls, strategy, m_archiver, m_work->path());
        std::optional<ActionItemsAssembler::Result> result;
        assembler->assemble([&result](const ActionItemsAssembler::Result& assembled) { result = assembled; });
        // Never answers from inside assemble().
        QVERIFY(!result);
        QTRY_VERIFY(result);
        QVERIFY(result->has_value());

        QStringList names;
        QSet<QString> paths;
        for (const ActionItem& item : **result) {
            names.append(item.url().fileName());
            paths.insert(item.url().toLocalFile());
            QVERIFY2(QFileInfo::exists(item.url().toLocalFile()), qPrintable(item.url().toLocalFile()));
        }
        QCOMPARE(names, expected);
        QCOMPARE(paths.size(), expected.size());

        // What each archive was asked to hold, by name.
        QList<QStringList> requested;
        for (const QStringList& request : m_archiver->requests()) {
            QStringList requestNames;
            for (const QString& path : request) {
                requestNames.append(QFileInfo(path).fileName());
            }
            requested.append(requestNames);
        }
        std::sort(requested.begin(), requested.end());
        std::sort(archived.begin(), archived.end());
        QCOMPARE(requested, archived);
        QCOMPARE(assembler->assembledItems().size(), archived.size());
        for (const QUrl& zip : assembler->assembledItems()) {
            QVERIFY(zip.toLocalFile().startsWith(m_work->path()));
        }

        // The archives go with the assembler; the user's files stay.
        const QList<QUrl> zips = assembler->assembledItems();
        assembler.reset();
        for (const QUrl& zip : zips) {
            QVERIFY(!QFileInfo::exists(zip.toLocalFile()));
        }
        QCOMPARE(filesUnder(m_work->path()), QStringList());
        for (const QUrl& url : urls) {
            QVERIFY(QFileInfo::exists(url.toLocalFile()));
        }
    }

    void clearRemovesTheArchives()
    {
        ActionItemsAssembler assembler(makeInputs({QStringLiteral("a.txt"), QStringLiteral("b.txt")}),
                                       Strategy::zipAllFiles, m_archiver, m_work->path());
        bool done = false;
        assembler.assemble(
            [&done](const ActionItemsAssembler::Result& result) { done = result.has_value(); });
        QTRY_VERIFY(done);
        QCOMPARE(filesUnder(m_work->path()).size(), 1);
        assembler.clear();
        QCOMPARE(filesUnder(m_work->path()), QStringList());
        QVERIFY(assembler.assembledItems().isEmpty());
    }

    void aFailedFolderFailsThePassAndLeavesNoArchive()
    {
        ActionItemsAssembler assembler(
            makeInputs({QStringLiteral("docs/"), QStringLiteral("broken/"), QStringLiteral("pics/")}),
            Strategy::zipDirectories, m_archiver, m_work->path());
        std::optional<ActionItemsAssembler::Result> result;
        assembler.assemble([&result](const ActionItemsAssembler::Result& assembled) { result = assembled; });
        QTRY_VERIFY(result);
        QVERIFY(!result->has_value());
        QCOMPARE(result->error(), ActionItemsAssembler::Error::failedPreparation);
        QCOMPARE(m_archiver->requests().size(), 3);
        // The two archives that were made are gone already.
        QVERIFY(assembler.assembledItems().isEmpty());
        QCOMPARE(filesUnder(m_work->path()), QStringList());
        QCOMPARE(filesUnder(m_input->path()).size(), 3);
    }

    void cancelFailsTheRunAndLeavesNothing_data()
    {
        QTest::addColumn<bool>("archiverIgnoresCancel");
        QTest::newRow("archiver stops") << false;
        QTest::newRow("archiver finishes its file anyway") << true;
    }

    void cancelFailsTheRunAndLeavesNothing()
    {
        QFETCH(bool, archiverIgnoresCancel);
        m_archiver->held = true;
        m_archiver->ignoresCancel = archiverIgnoresCancel;
        ActionItemsAssembler assembler(makeInputs({QStringLiteral("docs/"), QStringLiteral("a.txt")}),
                                       Strategy::zipDirectories, m_archiver, m_work->path());
        int calls = 0;
        std::optional<ActionItemsAssembler::Result> result;
        assembler.assemble([&](const ActionItemsAssembler::Result& assembled) {
            ++calls;
            result = assembled;
        });
        QTRY_COMPARE(m_archiver->requests().size(), 1);
        assembler.cancel();
        QVERIFY(assembler.isCancelled());
        QTRY_VERIFY(result);
        QVERIFY(!result->has_value());

        m_archiver->held = false;
        m_archiver->waitForDone();
        // Whatever the archiver still delivers is removed on arrival and reported to nobody.
        QTRY_COMPARE(filesUnder(m_work->path()), QStringList());
        QTest::qWait(20);
        QCOMPARE(calls, 1);
        QCOMPARE(filesUnder(m_work->path()), QStringList());
    }

    void anArchiveArrivingAfterTheAssemblerWentIsRemoved()
    {
        m_archiver->held = true;
        m_archiver->ignoresCancel = true;
        bool called = false;
        {
            ActionItemsAssembler assembler(makeInputs({QStringLiteral("docs/")}), Strategy::zipAllFiles,
                                           m_archiver, m_work->path());
            assembler.assemble([&called](const ActionItemsAssembler::Result&) { called = true; });
            QTRY_COMPARE(m_archiver->requests().size(), 1);
        }
        m_archiver->held = false;
        m_archiver->waitForDone();
        QTRY_COMPARE(filesUnder(m_work->path()), QStringList());
        QTest::qWait(20);
        QVERIFY(!called);
        QCOMPARE(QDir(m_work->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }

    void archivesGoToTheReservedFolderByDefault()
    {
        ActionItemsAssembler assembler(makeInputs({QStringLiteral("docs/")}), Strategy::zipDirectories,
                                       m_archiver);
        bool done = false;
        assembler.assemble(
            [&done](const ActionItemsAssembler::Result& result) { done = result.has_value(); });
        QTRY_VERIFY(done);
        const std::optional<QString> archives =
            TemporaryDirectories::path(ReservedTemporaryDirectory::archives);
        QVERIFY(archives);
        QCOMPARE(assembler.assembledItems().size(), 1);
        QVERIFY(assembler.assembledItems().first().toLocalFile().startsWith(*archives + QLatin1Char('/')));
    }

private:
    QList<QUrl> makeInputs(const QStringList& names)
    {
        QList<QUrl> urls;
        for (const QString& name : names) {
            const QString path = m_input->filePath(name);
            if (name.endsWith(QLatin1Char('/'))) {
                QDir().mkpath(path);
                Test::writeFile(path + QStringLiteral("inside.txt"), "inside");
                urls.append(QUrl::fromLocalFile(path));
            } else {
                QDir().mkpath(QFileInfo(path).absolutePath());
                Test::writeFile(path, name.toUtf8());
                urls.append(QUrl::fromLocalFile(path));
            }
        }
        return urls;
    }

    std::unique_ptr<QTemporaryDir> m_input;
    std::unique_ptr<QTemporaryDir> m_work;
    std::shared_ptr<Test::FakeArchiver> m_archiver;
};

QTEST_GUILESS_MAIN(TestActionItemsAssembler)
#include "TestActionItemsAssembler.moc"
