// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/Actions/CompressAction.h"
#include "Domains/Actions/ZipActionArchiver.h"
#include "Libraries/Core/ReservedTemporaryDirectory.h"
#include "support/TestSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// Lists every member of an archive with the SHA-256 of its contents ("-" for a folder), as Python's
// zipfile reads it, after its own check of every member's CRC.
const char* const zipReader = R"(
import hashlib, sys, zipfile
with zipfile.ZipFile(sys.argv[1]) as archive:
    bad = archive.testzip()
    if bad is not None:
        sys.exit("bad member " + bad)
    for info in archive.infolist():
        digest = "-" if info.is_dir() else hashlib.sha256(archive.read(info)).hexdigest()
        sys.stdout.buffer.write((info.filename + "\t" + digest + "\n").encode("utf-8"))
)";

QMap<QString, QString> readArchive(const QString& archive)
{
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-c"), QString::fromUtf8(zipReader), archive});
    if (!python.waitForFinished(60000) || python.exitCode() != 0) {
        qWarning() << "zipfile failed:" << python.readAllStandardError();
        return {};
    }
    QMap<QString, QString> members;
    const QList<QByteArray> lines = python.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines) {
        const qsizetype tab = line.indexOf('\t');
        if (tab > 0) {
            members.insert(QString::fromUtf8(line.left(tab)), QString::fromUtf8(line.mid(tab + 1)));
        }
    }
    return members;
}

QString sha256(const QByteArray& data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
}

QString archivesFolder()
{
    return TemporaryDirectories::path(ReservedTemporaryDirectory::archives).value_or(QString());
}

// What is left under the archives folder: every file and folder, relative.
QStringList leftInArchives()
{
    QStringList left;
    QDirIterator it(archivesFolder(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        left.append(QDir(archivesFolder()).relativeFilePath(it.next()));
    }
    return left;
}

struct Recorder {
    QList<Action::Result> results;
    QList<QList<QUrl>> revealed;
    QList<std::pair<double, std::optional<QString>>> progress;
};

} // namespace

// The compress action over the real zip library, read back by unzip and Python's zipfile.
class TestCompressAction final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void init()
    {
        m_input = std::make_unique<QTemporaryDir>();
        QDir(archivesFolder()).removeRecursively();
    }

    void archivesWhatTheItemsHold_data()
    {
        // Paths to make under the input folder: a trailing "/" is an empty folder. Then the top-level
        // names that are the shelf's items.
        QTest::addColumn<QStringList>("layout");
        QTest::addColumn<QStringList>("items");

        QTest::newRow("several files") << QStringList{u"a.txt"_s, u"b.bin"_s, u"c.png"_s}
                                       << QStringList{u"a.txt"_s, u"b.bin"_s, u"c.png"_s};
        QTest::newRow("nested folders and an empty one")
            << QStringList{u"docs/one.txt"_s, u"docs/deep/er/two.txt"_s, u"docs/empty/"_s, u"top.txt"_s}
            << QStringList{u"docs"_s, u"top.txt"_s};
        QTest::newRow("UTF-8 names") << QStringList{u"Ünïcödé ✓.txt"_s, u"日本語/ファイル.txt"_s}
                                     << QStringList{u"Ünïcödé ✓.txt"_s, u"日本語"_s};
        QTest::newRow("one folder") << QStringList{u"only/a.txt"_s, u"only/b/"_s} << QStringList{u"only"_s};
    }

    void archivesWhatTheItemsHold()
    {
        QFETCH(QStringList, layout);
        QFETCH(QStringList, items);

        QMap<QString, QString> expected;
        for (const QString& path : layout) {
            const QString full = m_input->filePath(path);
            if (path.endsWith(QLatin1Char('/'))) {
                QVERIFY(QDir().mkpath(full));
                expected.insert(path, u"-"_s);
                continue;
            }
            // Contents that differ per file and are not tiny, so a mix-up or a truncation shows.
            QByteArray data = path.toUtf8().repeated(5000);
            data.append(QByteArray::number(QRandomGenerator::global()->generate64()));
            QVERIFY(Test::writeFile(full, data));
            expected.insert(path, sha256(data));
        }

        auto [action, recorder] = makeAction();
        action->perform(actionItems(items), progressInto(recorder), resultInto(recorder));
        QTRY_COMPARE_WITH_TIMEOUT(recorder->results.size(), 1, 30000);

        const Action::Result& result = recorder->results.first();
        QVERIFY2(result.has_value(), qPrintable(result ? QString() : result.error().description()));
        QCOMPARE(*result, ActionResultContext{});
        QCOMPARE(recorder->revealed.size(), 1);
        QCOMPARE(recorder->revealed.first().size(), 1);
        const QString archive = recorder->revealed.first().first().toLocalFile();
        QCOMPARE(QFileInfo(archive).fileName(), u"Archive.zip"_s);
        QVERIFY(archive.startsWith(archivesFolder() + QLatin1Char('/')));

        QProcess unzip;
        unzip.start(u"unzip"_s, {u"-t"_s, archive});
        QVERIFY(unzip.waitForFinished(60000));
        QVERIFY2(unzip.exitCode() == 0, unzip.readAllStandardOutput().constData());

        // Every file with its contents and every empty folder; folders that hold something may or may
        // not have entries of their own.
        QMap<QString, QString> members = readArchive(archive);
        for (auto it = members.begin(); it != members.end();) {
            const bool parentOfSomething = it.value() == u"-"_s && !expected.contains(it.key());
            it = parentOfSomething ? members.erase(it) : std::next(it);
        }
        QCOMPARE(members, expected);

        // The title first, then fractions that only grow up to the whole.
        QVERIFY(!recorder->progress.isEmpty());
        QCOMPARE(recorder->progress.first().first, 0.0);
        double last = 0.0;
        for (const auto& [fraction, title] : recorder->progress) {
            QCOMPARE(title, std::optional<QString>(CompressAction::progressTitle()));
            QVERIFY(fraction >= last && fraction <= 1.0);
            last = fraction;
        }
        QCOMPARE(last, 1.0);
    }

    void failureLeavesNoArchive_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("a file went away after it was put on the shelf") << u"vanished"_s;
        // An unreadable folder among the items is the zip library's own test: it reads on this thread,
        // where the test can take away the rights that root has.
        QTest::newRow("the archives folder cannot be written") << u"unwritable"_s;
    }

    void failureLeavesNoArchive()
    {
        QFETCH(QString, fault);
        QVERIFY(Test::writeFile(m_input->filePath(u"fine.txt"_s), QByteArray(100000, 'x')));
        QVERIFY(Test::writeFile(m_input->filePath(u"trouble/inside.txt"_s), "inside"));
        const ActionItemList items = actionItems({u"fine.txt"_s, u"trouble"_s});

        std::unique_ptr<Test::UnreadableFolder> unreadable;
        if (fault == u"vanished"_s) {
            QVERIFY(QDir(m_input->filePath(u"trouble"_s)).removeRecursively());
        } else {
            unreadable = std::make_unique<Test::UnreadableFolder>(archivesFolder());
            if (!unreadable->isEnforced()) {
                QSKIP("folder permissions are not enforced here");
            }
        }

        auto [action, recorder] = makeAction();
        action->perform(items, progressInto(recorder), resultInto(recorder));
        QTRY_COMPARE_WITH_TIMEOUT(recorder->results.size(), 1, 30000);
        const Action::Result& result = recorder->results.first();
        QVERIFY(!result.has_value());
        QCOMPARE(result.error().description(), u"Failed to compress items"_s);
        QVERIFY(recorder->revealed.isEmpty());
        unreadable.reset();
        QCOMPARE(leftInArchives(), QStringList());
        // The user's own files are untouched.
        QVERIFY(QFileInfo(m_input->filePath(u"fine.txt"_s)).isFile());
        QCOMPARE(QFileInfo(m_input->filePath(u"fine.txt"_s)).size(), 100000);
    }

    void cancelInTheMiddleReportsNothingAndLeavesNothing()
    {
        // Enough incompressible data that deflating it takes a while.
        QByteArray noise(48 * 1024 * 1024, Qt::Uninitialized);
        QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(noise.data()),
                                              noise.size() / int(sizeof(quint32)));
        QVERIFY(Test::writeFile(m_input->filePath(u"noise.bin"_s), noise));
        QVERIFY(Test::writeFile(m_input->filePath(u"more.bin"_s), noise));

        auto [action, recorder] = makeAction();
        bool cancelled = false;
        double cancelledAt = -1;
        Action* raw = action.get();
        action->perform(
            actionItems({u"noise.bin"_s, u"more.bin"_s}),
            [&](double fraction, const std::optional<QString>&) {
                if (!cancelled && fraction > 0.0) {
                    cancelled = true;
                    cancelledAt = fraction;
                    raw->cancel();
                }
            },
            resultInto(recorder));
        QTRY_VERIFY_WITH_TIMEOUT(cancelled, 30000);
        QVERIFY2(cancelledAt < 1.0, "the archive was done before it could be cancelled");
        // The run's folder goes when the archiver has stopped.
        QTRY_COMPARE_WITH_TIMEOUT(leftInArchives(), QStringList(), 30000);
        QTest::qWait(300);
        QVERIFY(recorder->results.isEmpty());
        QVERIFY(recorder->revealed.isEmpty());
        QCOMPARE(QFileInfo(m_input->filePath(u"noise.bin"_s)).size(), noise.size());
    }

private:
    std::pair<std::shared_ptr<CompressAction>, std::shared_ptr<Recorder>> makeAction()
    {
        auto recorder = std::make_shared<Recorder>();
        auto action = std::make_shared<CompressAction>(
            m_archiver, [recorder](const QList<QUrl>& urls) { recorder->revealed.append(urls); });
        return {action, recorder};
    }

    static Action::ProgressHandler progressInto(const std::shared_ptr<Recorder>& recorder)
    {
        return [recorder](double fraction, const std::optional<QString>& title) {
            recorder->progress.append({fraction, title});
        };
    }

    static Action::Completion resultInto(const std::shared_ptr<Recorder>& recorder)
    {
        return [recorder](const Action::Result& result) { recorder->results.append(result); };
    }

    ActionItemList actionItems(const QStringList& names)
    {
        ActionItemList items;
        for (const QString& name : names) {
            auto item = ActionItem::fromFile(QUrl::fromLocalFile(m_input->filePath(name)));
            if (item) {
                items.append(*item);
            }
        }
        return items;
    }

    std::shared_ptr<ZipActionArchiver> m_archiver = std::make_shared<ZipActionArchiver>();
    std::unique_ptr<QTemporaryDir> m_input;
};

QTEST_GUILESS_MAIN(TestCompressAction)
#include "TestCompressAction.moc"
