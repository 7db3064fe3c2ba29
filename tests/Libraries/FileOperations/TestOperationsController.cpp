// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
// The controller's runs end to end on real files and real processes: scripts whose output becomes the
// shelf's content, a script that hangs, the user's own command lines and chains, and the stored forms.
// Test data reads better as plain literals; the program itself keeps the strict casts.
#undef QT_NO_CAST_FROM_ASCII

#include "Libraries/FileOperations/ApplicationScriptsStore.h"
#include "Libraries/FileOperations/CommandTemplate.h"
#include "Libraries/FileOperations/OperationChoiceStore.h"
#include "Libraries/FileOperations/OperationsController.h"
#include "Libraries/FileOperations/OperationsControllerDelegate.h"
#include "Libraries/FileOperations/UserOperationStore.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;

namespace {

class RecordingDelegate final : public OperationsControllerDelegate {
public:
    enum class End { none, finished, failed, cancelled };
    End end = End::none;
    QString message;
    QStringList replaced;
    QStringList removed;
    QString text;
    bool started = false;

    void operationDidStart(OperationsController&, const QString&) override { started = true; }
    void operationDidProgress(OperationsController&, double, const QString&) override {}
    void operationReplaceContent(OperationsController&, const QStringList& paths) override
    {
        replaced = paths;
    }
    void operationRemoveContent(OperationsController&, const QStringList& paths) override { removed = paths; }
    void operationProduceText(OperationsController&, const QString& produced, bool) override
    {
        text = produced;
    }
    void operationDidFinish(OperationsController&, const QString& text) override
    {
        end = End::finished, message = text;
    }
    void operationDidFail(OperationsController&, const QString& text) override
    {
        end = End::failed, message = text;
    }
    void operationDidCancel(OperationsController&) override { end = End::cancelled; }

    bool waitForEnd(int milliseconds = 20000)
    {
        return QTest::qWaitFor([this] { return end != End::none; }, milliseconds);
    }
};

QString makeFile(const QString& path, const QByteArray& content = "x")
{
    Test::writeFile(path, content);
    return path;
}

QString makeScript(const QString& path, const QByteArray& body)
{
    Test::writeFile(path, "#!/bin/sh\n" + body);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

QList<QUrl> urls(const QStringList& paths)
{
    QList<QUrl> list;
    for (const QString& path : paths) {
        list.append(QUrl::fromLocalFile(path));
    }
    return list;
}

} // namespace

class TestOperationsController final : public QObject {
    Q_OBJECT

private:
    QString m_home;

private Q_SLOTS:
    void initTestCase()
    {
        Test::isolateStandardPaths();
        m_home = QDir::homePath();
    }

    void scriptOutputBecomesTheShelfsContent()
    {
        QTemporaryDir scripts;
        const QString inHome = makeFile(m_home + "/Pictures/kept.png");
        QTemporaryDir outside(QDir::tempPath() + "/outside-XXXXXX");
        const QString outsideFile = makeFile(outside.path() + "/secret.txt");
        // Prints: a file it writes in its output folder (relative), one in the home, one that does not
        // exist, one outside both, and a link out of the home that must not be followed out.
        QFile::link(outsideFile, m_home + "/link-out.txt");
        makeScript(scripts.path() + "/Collect", "printf 'made from %s\\n' \"$@\" > result.txt\n"
                                                "echo result.txt\n"
                                                "echo '" +
                                                    inHome.toUtf8() +
                                                    "'\n"
                                                    "echo /nowhere/at/all.txt\n"
                                                    "echo '" +
                                                    outsideFile.toUtf8() +
                                                    "'\n"
                                                    "echo '" +
                                                    m_home.toUtf8() + "/link-out.txt'\n");
        ApplicationScriptsStore store(scripts.path());
        QCOMPARE(store.scripts().size(), 1);
        OperationsController::Environment environment;
        environment.scripts = &store;
        OperationsController controller(environment);
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        const QString input = makeFile(m_home + "/in put.txt");
        controller.setItems(urls({input}));
        QCOMPARE(controller.performableApplicationScripts().size(), 1);
        QVERIFY(controller.performApplicationScript(controller.performableApplicationScripts().first()));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.end, RecordingDelegate::End::finished);
        QCOMPARE(delegate.replaced.size(), 2);
        QCOMPARE(QFileInfo(delegate.replaced[0]).fileName(), QStringLiteral("result.txt"));
        QVERIFY(delegate.replaced[0].startsWith(OperationsController::outputDirectory()));
        QCOMPARE(Test::readFile(delegate.replaced[0]), "made from " + input.toUtf8() + "\n");
        QCOMPARE(delegate.replaced[1], QFileInfo(inHome).canonicalFilePath());
    }

    void scriptFailureShowsItsLastErrorLine()
    {
        QTemporaryDir scripts;
        makeScript(scripts.path() + "/Fail",
                   "echo 'first problem' >&2\necho 'the real reason' >&2\necho\nexit 3\n");
        ApplicationScriptsStore store(scripts.path());
        OperationsController::Environment environment;
        environment.scripts = &store;
        OperationsController controller(environment);
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls({makeFile(m_home + "/a.txt")}));
        QVERIFY(controller.performApplicationScript(store.scripts().first()));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.end, RecordingDelegate::End::failed);
        QCOMPARE(delegate.message, QStringLiteral("a.txt: the real reason"));
        QVERIFY(delegate.replaced.isEmpty());
    }

    void hangingScriptIsKilledAtItsLimit()
    {
        QTemporaryDir scripts;
        const QString pidFile = scripts.path() + "/pid";
        // A child of its own that would outlive a kill of the script alone.
        makeScript(scripts.path() + "/Hang", "sleep 60 &\necho $! > '" + pidFile.toUtf8() + "'\nwait\n");
        ApplicationScriptsStore store(scripts.path());
        OperationsController::Environment environment;
        environment.scripts = &store;
        environment.scriptTimeLimit = 700ms;
        OperationsController controller(environment);
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls({makeFile(m_home + "/a.txt")}));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(controller.performApplicationScript(store.scripts().first()));
        QVERIFY(delegate.waitForEnd());
        QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
        QCOMPARE(delegate.end, RecordingDelegate::End::failed);
        QVERIFY2(delegate.message.contains("was stopped"), qPrintable(delegate.message));
        const QByteArray pid = Test::readFile(pidFile).trimmed();
        QVERIFY(!pid.isEmpty());
        QVERIFY(QTest::qWaitFor([&pid] { return !QFileInfo::exists("/proc/" + QString::fromLatin1(pid)); },
                                5000));
    }

    void cancelStopsARunningScript()
    {
        QTemporaryDir scripts;
        makeScript(scripts.path() + "/Slow", "sleep 60\n");
        ApplicationScriptsStore store(scripts.path());
        OperationsController::Environment environment;
        environment.scripts = &store;
        OperationsController controller(environment);
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls({makeFile(m_home + "/a.txt")}));
        QVERIFY(controller.performApplicationScript(store.scripts().first()));
        QTest::qWait(300);
        controller.cancel();
        QVERIFY(delegate.waitForEnd(8000));
        QCOMPARE(delegate.end, RecordingDelegate::End::cancelled);
    }

    void unsafeScriptsAreNotOffered()
    {
        QTemporaryDir scripts;
        makeScript(scripts.path() + "/Good", "true\n");
        const QString shared = makeScript(scripts.path() + "/Shared", "true\n");
        QFile::setPermissions(shared,
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::WriteOther);
        makeFile(scripts.path() + "/NotExecutable", "#!/bin/sh\n");
        QFile::link(scripts.path() + "/Good", scripts.path() + "/Link");
        const QList<ApplicationScript> offered = ApplicationScriptsStore(scripts.path()).scripts();
        QCOMPARE(offered.size(), 1);
        QCOMPARE(offered.first().name, QStringLiteral("Good"));
        QCOMPARE(offered.first().identifier, ApplicationScript::forPath(scripts.path() + "/Good").identifier);
    }

    void commandLineReachesTheProgramAsSeparateArguments_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QList<QStringList>>("expected"); // each run's arguments; %1 %2 are the files

        QTest::newRow("each file") << "RECORDER --size '50%' %f"
                                   << QList<QStringList>{{"--size", "50%", "%1"}, {"--size", "50%", "%2"}};
        QTest::newRow("all files") << "RECORDER \"two words\" %F --end"
                                   << QList<QStringList>{{"two words", "%1", "%2", "--end"}};
        QTest::newRow("no placeholder") << "RECORDER -v" << QList<QStringList>{{"-v", "%1", "%2"}};
        QTest::newRow("quoted placeholder with text")
            << "RECORDER \"out-%f.png\" 100%%"
            << QList<QStringList>{{"out-%1.png", "100%"}, {"out-%2.png", "100%"}};
    }

    void commandLineReachesTheProgramAsSeparateArguments()
    {
        QFETCH(QString, command);
        QFETCH(QList<QStringList>, expected);
        QTemporaryDir folder;
        const QString log = folder.path() + "/arguments.log";
        // Records each argument NUL-terminated, one run per line.
        const QString recorder = makeScript(folder.path() + "/record args",
                                            "for a in \"$@\"; do printf '%s\\0' \"$a\"; done >> '" +
                                                log.toUtf8() + "'\necho >> '" + log.toUtf8() + "'\n");
        // Names a shell would take apart or run.
        const QString first = makeFile(folder.path() + "/it's a \"file\" $(touch pwned).txt");
        const QString second = makeFile(folder.path() + "/spaced  name;rm -rf x.txt");
        QString quotedRecorder = recorder;
        quotedRecorder.replace(" ", "\\ ");
        UserOperation operation{QUuid::createUuid(),
                                "Record",
                                UserOperation::Kind::command,
                                {},
                                command.replace("RECORDER", quotedRecorder),
                                {}};
        OperationsController controller({});
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls({first, second}));
        QVERIFY(controller.performUserOperation(operation));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.end, RecordingDelegate::End::finished);
        QList<QStringList> runs;
        for (const QByteArray& line : Test::readFile(log).split('\n')) {
            if (line.isEmpty()) {
                continue;
            }
            QStringList arguments;
            for (const QByteArray& argument : line.split('\0')) {
                arguments.append(QString::fromUtf8(argument));
            }
            arguments.removeLast(); // after the last terminator
            runs.append(arguments);
        }
        for (QStringList& run : expected) {
            run.replaceInStrings("%1", first).replaceInStrings("%2", second);
        }
        QCOMPARE(runs, expected);
        QVERIFY(!QFileInfo::exists(folder.path() + "/pwned"));
        QVERIFY(!QFileInfo::exists(QDir::currentPath() + "/pwned"));
    }

    void commandTemplateRefusesWhatItCannotSplit_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<CommandTemplate::Error::Kind>("kind");
        QTest::newRow("empty") << "   " << CommandTemplate::Error::Kind::empty;
        QTest::newRow("open quote") << "convert 'a %f" << CommandTemplate::Error::Kind::unclosedQuote;
        QTest::newRow("backslash") << "echo \\" << CommandTemplate::Error::Kind::trailingBackslash;
    }

    void commandTemplateRefusesWhatItCannotSplit()
    {
        QFETCH(QString, command);
        QFETCH(CommandTemplate::Error::Kind, kind);
        const auto parsed = CommandTemplate::parse(command);
        QVERIFY(!parsed);
        QCOMPARE(parsed.error().kind, kind);
    }

    void chainRunsEachStepOnThePreviousResults()
    {
        QTemporaryDir folder;
        const QStringList files{makeFile(folder.path() + "/b.txt", "bee"),
                                makeFile(folder.path() + "/a.txt", "ay")};
        const UserOperation operation{
            QUuid::createUuid(),
            "Number and pack",
            UserOperation::Kind::chain,
            {{FileOperationType::batchRename, {{"pattern", "part {counter}"}, {"digits", 2}}},
             {FileOperationType::zip, {{"name", "Parts"}}}},
            {},
            {}};
        OperationsController controller({});
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls(files));
        QVERIFY(controller.performUserOperation(operation));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.end, RecordingDelegate::End::finished);
        QCOMPARE(delegate.replaced.size(), 1);
        QCOMPARE(QFileInfo(delegate.replaced.first()).fileName(), QStringLiteral("Parts.zip"));
        QProcess unzip;
        unzip.start("unzip", {"-Z1", delegate.replaced.first()});
        QVERIFY(unzip.waitForFinished());
        QCOMPARE(QString::fromUtf8(unzip.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts),
                 (QStringList{"part 01.txt", "part 02.txt"}));
        // The renames are the user's asked-for change to the originals.
        QCOMPARE(Test::readFile(folder.path() + "/part 01.txt"), QByteArray("bee"));
    }

    void chainWithBadValuesFailsClearly()
    {
        QTemporaryDir folder;
        const UserOperation operation{QUuid::createUuid(),
                                      "Bad",
                                      UserOperation::Kind::chain,
                                      {{FileOperationType::zip, {{"compression", "ultra"}}}},
                                      {},
                                      {}};
        OperationsController controller({});
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        const QString file = makeFile(folder.path() + "/a.txt");
        controller.setItems(urls({file}));
        QVERIFY(controller.performUserOperation(operation));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.end, RecordingDelegate::End::failed);
        QVERIFY2(delegate.message.contains("compression"), qPrintable(delegate.message));
        QVERIFY(QFileInfo::exists(file));
    }

    void userOperationsAreStoredAndAnnounced()
    {
        QTemporaryDir folder;
        const QString path = folder.path() + "/user-operations.json";
        UserOperationStore store(path);
        QSignalSpy inserted(&store, &UserOperationStore::didInsertOperation);
        QSignalSpy updated(&store, &UserOperationStore::didUpdateOperation);
        QSignalSpy deleted(&store, &UserOperationStore::didDeleteOperation);
        UserOperation chain{QUuid::createUuid(),
                            "Web size",
                            UserOperation::Kind::chain,
                            {{FileOperationType::batchRename, {{"pattern", "web {counter}"}}}},
                            {},
                            {}};
        UserOperation command{
            QUuid::createUuid(), "Open in GIMP", UserOperation::Kind::command, {}, "gimp %F", {}};
        QVERIFY(store.insert(chain));
        QVERIFY(store.insert(command));
        chain.name = "Web";
        QVERIFY(store.update(chain));
        QCOMPARE(inserted.size(), 2);
        QCOMPARE(updated.size(), 1);
        UserOperationStore reread(path);
        QCOMPARE(reread.operations(), (QList<UserOperation>{chain, command}));
        QVERIFY(store.remove(command.identifier));
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(deleted.first().first().value<QUuid>(), command.identifier);
        QVERIFY(!store.remove(command.identifier));
        QCOMPARE(UserOperationStore(path).operations(), QList<UserOperation>{chain});
    }

    void corruptUserOperationsFileIsKeptAndReported_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("truncated") << QByteArray(
            "[{\"identifier\": \"5b0c6f2e-6a43-4c8e-9d0e-3f1a2b7c9d41\", \"na");
        QTest::newRow("unknown step") << QByteArray(
            "[{\"identifier\":\"5b0c6f2e-6a43-4c8e-9d0e-3f1a2b7c9d41\",\"name\":\"X\",\"kind\":\"chain\","
            "\"steps\":[{\"operation\":\"operationTeleport\"}]}]");
        QTest::newRow("not a list") << QByteArray("{\"name\": 1}");
    }

    void corruptUserOperationsFileIsKeptAndReported()
    {
        QFETCH(QByteArray, content);
        QTemporaryDir folder;
        const QString path = folder.path() + "/user-operations.json";
        Test::writeFile(path, content);
        UserOperationStore store(path);
        QVERIFY(store.loadError());
        QVERIFY(store.operations().isEmpty());
        // The unreadable bytes are kept aside, and a new operation does not overwrite them.
        QVERIFY(store.insert({QUuid::createUuid(), "New", UserOperation::Kind::command, {}, "true", {}}));
        bool kept = false;
        for (const QString& name : QDir(folder.path()).entryList(QDir::Files)) {
            kept = kept || Test::readFile(folder.path() + "/" + name) == content;
        }
        QVERIFY(kept);
        QCOMPARE(UserOperationStore(path).operations().size(), 1);
    }

    void choicesAndRecentDestinationsAreRemembered()
    {
        QTemporaryDir folder;
        const QString path = folder.path() + "/choices.json";
        QTemporaryDir first;
        QTemporaryDir second;
        {
            OperationChoiceStore store(path);
            store.addRecentDestination("operationCopyTo", first.path());
            store.remember("operationCopyTo", {{"clash", "skip"}});
            store.addRecentDestination("operationCopyTo", second.path());
            store.addRecentDestination("operationCopyTo", first.path());
        }
        OperationChoiceStore store(path);
        QCOMPARE(store.lastChoice("operationCopyTo"), (QVariantMap{{"clash", "skip"}}));
        QCOMPARE(store.recentDestinations("operationCopyTo"), (QStringList{first.path(), second.path()}));
        QVERIFY(store.recentDestinations("operationMoveTo").isEmpty());
        Test::writeFile(path, "not json");
        QVERIFY(OperationChoiceStore(path).lastChoice("operationCopyTo").isEmpty());
    }

    void zipRunPutsTheArchiveOnTheShelfAndTrashRemovesItems()
    {
        QTemporaryDir folder;
        const QStringList files{makeFile(folder.path() + "/one.txt", "1"),
                                makeFile(folder.path() + "/two.txt", "2")};
        OperationsController controller({});
        RecordingDelegate delegate;
        controller.setDelegate(&delegate);
        controller.setItems(urls(files));
        QVERIFY(!controller.performOperationType(FileOperationType::zip, {{"compression", "ultra"}}));
        QVERIFY(!delegate.started);
        QVERIFY(controller.performOperationType(FileOperationType::zip, {{"name", "Both"}}));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.replaced.size(), 1);
        QVERIFY(delegate.replaced.first().startsWith(OperationsController::outputDirectory() + "/"));
        QVERIFY(delegate.replaced.first().endsWith("/Both.zip"));
        // The originals are untouched by a zip.
        QCOMPARE(Test::readFile(files.first()), QByteArray("1"));

        delegate = {};
        QVERIFY(controller.performOperationType(FileOperationType::moveToTrash, {}));
        QVERIFY(delegate.waitForEnd());
        QCOMPARE(delegate.removed, files);
        QVERIFY(!QFileInfo::exists(files.first()));
    }
};

QTEST_GUILESS_MAIN(TestOperationsController)
#include "TestOperationsController.moc"
