// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/WatchedFolderController.h"
#include "FolderTestSupport.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

using State = WatchedFolderController::State;
using ErrorKind = WatchedFolderController::Error::Kind;

struct Fixture : Test::FolderFixture {
    Test::TestShelves shelves;
    DirectoryObserverCoordinator coordinator{clock, watcher};
    std::unique_ptr<ObservedDirectoryStore> store;
    std::unique_ptr<WatchedFolderController> controller;

    Fixture()
        : FolderFixture(u"Inbox"_s)
    {
        coordinator.setDataSource(&shelves);
        reload();
    }

    QString storePath() const { return root.path() + u"/.observed_directories"_s; }
    QUrl url() const { return QUrl::fromLocalFile(folder); }
    // A new store and controller over the same file, as at the next launch.
    void reload()
    {
        controller.reset();
        store = std::make_unique<ObservedDirectoryStore>(storePath(), false);
        controller = std::make_unique<WatchedFolderController>(*store, coordinator, clock, watcher);
    }
    State stateOf(const QString& identifier) const
    {
        for (const auto& folder : controller->folders()) {
            if (folder.directory.identifier == identifier) {
                return folder.state;
            }
        }
        return State::inactive;
    }
    bool pass()
    {
        return Test::runPass(clock, watcher,
                             [this] { return Test::treePasses(coordinator.observer(url())); });
    }
    // Lets one recheck run.
    void recheck()
    {
        clock.advance(WatchedFolderController::recheckInterval);
        Test::settle(clock);
    }
    qsizetype filesOnShelves() const
    {
        qsizetype count = 0;
        for (const auto& shelf : shelves.shelves) {
            count += shelf.files.size();
        }
        return count;
    }
};

} // namespace

// The watched folders as the user and the command line change them, on real folders.
class TestWatchedFolderController final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void refusesWhatCannotBeWatched_data()
    {
        QTest::addColumn<QString>("relative");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("words");
        QTest::newRow("missing") << u"nowhere"_s << int(ErrorKind::missing) << u"no such folder"_s;
        QTest::newRow("a file") << u"Inbox/file.txt"_s << int(ErrorKind::notAFolder) << u"not a folder"_s;
        QTest::newRow("watched already, spelled otherwise")
            << u"Inbox/./"_s << int(ErrorKind::alreadyWatched) << u"watched already"_s;
        QTest::newRow("restricted") << u"Screenshots"_s << int(ErrorKind::restricted) << u"screenshot"_s;
    }

    void refusesWhatCannotBeWatched()
    {
        QFETCH(QString, relative);
        QFETCH(int, kind);
        QFETCH(QString, words);
        Fixture f;
        QVERIFY(f.write(u"file.txt"_s));
        QVERIFY(QDir().mkpath(f.root.path() + u"/Screenshots"_s));
        f.coordinator.restrictDirectory(QUrl::fromLocalFile(f.root.path() + u"/Screenshots"_s));
        QVERIFY(f.controller->add(f.folder).has_value());
        const QByteArray before = Test::readFile(f.storePath());

        const auto added = f.controller->add(f.root.path() + u'/' + relative);
        QVERIFY(!added);
        QCOMPARE(int(added.error().kind), kind);
        QVERIFY2(added.error().message.contains(words), qPrintable(added.error().message));
        QCOMPARE(f.store->items().size(), 1);
        QCOMPARE(Test::readFile(f.storePath()), before);
    }

    void refusesAnUnreadableFolder()
    {
        Fixture f;
        const QString locked = f.root.path() + u"/Locked"_s;
        QVERIFY(QDir().mkpath(locked));
        const Test::UnreadableFolder unreadable(locked);
        if (!unreadable.isEnforced()) {
            QSKIP("this process reads any folder");
        }
        const auto added = f.controller->add(locked);
        QVERIFY(!added);
        QCOMPARE(added.error().kind, ErrorKind::unreadable);
        QVERIFY(f.store->items().isEmpty());
    }

    void pausedAndRemovedFoldersStayThatWayAcrossLaunches()
    {
        Fixture f;
        const QString second = f.root.path() + u"/Second"_s;
        QVERIFY(QDir().mkpath(second));
        const auto inbox = f.controller->add(f.folder);
        const auto other = f.controller->add(second);
        QVERIFY(inbox && other);
        QCOMPARE(inbox->state, State::active);

        QCOMPARE(f.controller->pause(inbox->directory.identifier.toLower())->state, State::paused);
        QVERIFY(f.controller->remove(other->directory.identifier));
        QCOMPARE(f.controller->remove(other->directory.identifier).error().kind, ErrorKind::unknownFolder);

        f.coordinator.removeObserver(f.url());
        f.reload();
        f.controller->startAtLaunch();
        QCOMPARE(f.store->items().size(), 1);
        QCOMPARE(f.stateOf(inbox->directory.identifier), State::paused);
        QVERIFY(f.write(u"while-paused.pdf"_s));
        f.pass();
        QCOMPARE(f.filesOnShelves(), 0);

        QCOMPARE(f.controller->resume(inbox->directory.identifier)->state, State::active);
        QVERIFY(f.write(u"after.pdf"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.shelves.shelves.size(), 1);
        QCOMPARE(f.shelves.shelves.first().files, QList<QUrl>{QUrl::fromLocalFile(f.path(u"after.pdf"_s))});
    }

    // Rules changed in the settings are stored and hold from the next item on; a paused folder stays
    // paused, and its place cannot be changed that way.
    void changedRulesHoldAtOnce()
    {
        Fixture f;
        auto added = f.controller->add(f.folder);
        QVERIFY(added);
        ObservedDirectory changed = added->directory;
        changed.filters = {
            {DirectoryObserverFilter::OperatorType::And,
             DirectoryObserverItemMatcher::fileExtension(
                 {DirectoryObserverItemMatcher::StringMatching::Comparison::equals, u"pdf"_s})}};
        changed.options.rulesCaseSensitive = true;
        changed.url = QUrl::fromLocalFile(f.root.path());
        changed.lifecycle.isStopped = true;
        const auto result = f.controller->change(changed);
        QVERIFY(result);
        QCOMPARE(result->state, State::active);
        QCOMPARE(result->directory.url, f.url());
        QCOMPARE(ObservedDirectoryStore(f.storePath(), false).items().value(0).filters, changed.filters);

        QVERIFY(f.write(u"notes.txt"_s));
        QVERIFY(f.write(u"scan.pdf"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.filesOnShelves(), 1);
        QCOMPARE(f.shelves.shelves.first().files, QList<QUrl>{QUrl::fromLocalFile(f.path(u"scan.pdf"_s))});

        QVERIFY(f.controller->pause(added->directory.identifier));
        changed.filters.clear();
        QCOMPARE(f.controller->change(changed)->state, State::paused);
        changed.identifier = u"00000000-0000-0000-0000-000000000000"_s;
        QCOMPARE(f.controller->change(changed).error().kind, ErrorKind::unknownFolder);
    }

    // A folder that goes away is shown missing or unreadable and starts again once it is back, also as
    // a new directory under the old name.
    void aFolderThatComesBackIsWatchedAgain_data()
    {
        QTest::addColumn<bool>("deleted");
        QTest::newRow("deleted and made again") << true;
        QTest::newRow("unreadable for a while") << false;
    }

    void aFolderThatComesBackIsWatchedAgain()
    {
        QFETCH(bool, deleted);
        Fixture f;
        const auto added = f.controller->add(f.folder);
        QVERIFY(added);
        f.controller->startAtLaunch();
        const QString identifier = added->directory.identifier;
        // A folder that runs is not polled: nothing wakes while nothing happens.
        Test::settle(f.clock);
        QCOMPARE(f.clock.pendingCount(), 0);

        std::optional<Test::UnreadableFolder> unreadable;
        if (deleted) {
            QVERIFY(QDir(f.folder).removeRecursively());
        } else {
            unreadable.emplace(f.folder);
            if (!unreadable->isEnforced()) {
                QSKIP("this process reads any folder");
            }
        }
        // The change to the folder itself is enough; no time has to pass.
        f.watcher.fireAll();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(f.coordinator.observationStatus(f.url()),
                 DirectoryObserverCoordinator::ObservationStatus::notObserving);
        QCOMPARE(f.stateOf(identifier), deleted ? State::missing : State::unreadable);
        QCOMPARE(f.store->items().size(), 1);
        // Now it is looked for until it is back.
        QVERIFY(f.clock.pendingCount() > 0);
        f.recheck();
        QCOMPARE(f.stateOf(identifier), deleted ? State::missing : State::unreadable);

        if (deleted) {
            QVERIFY(QDir().mkpath(f.folder));
        } else {
            unreadable.reset();
        }
        f.recheck();
        QCOMPARE(f.stateOf(identifier), State::active);
        QVERIFY(f.write(u"back.pdf"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.filesOnShelves(), 1);
        Test::settle(f.clock);
        QCOMPARE(f.clock.pendingCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestWatchedFolderController)
#include "TestWatchedFolderController.moc"
