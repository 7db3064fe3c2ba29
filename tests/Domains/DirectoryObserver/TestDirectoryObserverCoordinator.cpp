// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/DirectoryObserverCoordinator.h"
#include "FolderTestSupport.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

using Test::TestShelves;

struct Fixture : Test::FolderFixture {
    TestShelves shelves;
    DirectoryObserverCoordinator coordinator{clock, watcher};

    Fixture()
        : FolderFixture(u"Inbox"_s)
    {
        coordinator.setDataSource(&shelves);
    }

    QUrl url() const { return QUrl::fromLocalFile(folder); }
    bool pass()
    {
        return Test::runPass(clock, watcher,
                             [this] { return Test::treePasses(coordinator.observer(url())); });
    }
};

} // namespace

class TestDirectoryObserverCoordinator final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void reportsBecomeShelves_data()
    {
        QTest::addColumn<bool>("appendsToInitialShelf");
        // Shelves after two reports, and after a third that follows the closing of the last shelf.
        QTest::addColumn<int>("shelvesAfterTwo");
        QTest::addColumn<int>("shelvesAfterClose");
        QTest::newRow("append to the folder's shelf") << true << 1 << 2;
        QTest::newRow("a shelf per report") << false << 2 << 3;
    }

    void reportsBecomeShelves()
    {
        QFETCH(bool, appendsToInitialShelf);
        QFETCH(int, shelvesAfterTwo);
        QFETCH(int, shelvesAfterClose);

        Fixture f;
        ObservedDirectory stored = ObservedDirectory::make(f.url(), "bookmark");
        stored.options.appendsToInitialShelf = appendsToInitialShelf;
        f.coordinator.startObservingAtLaunch({stored});

        QVERIFY(f.write(u"first.pdf"_s));
        QVERIFY(f.pass());
        QVERIFY(f.write(u"second.pdf"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.shelves.shelves.size(), shelvesAfterTwo);
        QCOMPARE(f.shelves.shelves.first().messages, QStringList{u"1 PDF from Inbox"_s});
        QCOMPARE(f.shelves.shelves.last().messages.size(), 1);
        QCOMPARE(f.shelves.shelves.first().files.size(), 3 - shelvesAfterTwo);

        f.shelves.shelves.last().open = false;
        QVERIFY(f.write(u"third.png"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.shelves.shelves.size(), shelvesAfterClose);
        QCOMPARE(f.shelves.shelves.last().files,
                 QList<QUrl>{QUrl::fromLocalFile(f.folder + u"/third.png"_s)});
        QCOMPARE(f.shelves.shelves.last().messages, QStringList{u"1 image from Inbox"_s});
    }

    void launchSkipsPausedFoldersAndCopiesOptions()
    {
        Fixture f;
        const QString other = f.root.path() + u"/Paused"_s;
        QVERIFY(QDir().mkpath(f.folder + u"/nested"_s) && QDir().mkpath(other));
        ObservedDirectory running = ObservedDirectory::make(f.url(), "a");
        running.options.observesNestedDirectories = true;
        running.options.rulesCaseSensitive = true;
        running.filters = {
            {DirectoryObserverFilter::OperatorType::And,
             DirectoryObserverItemMatcher::fileName(
                 {DirectoryObserverItemMatcher::StringMatching::Comparison::endsWith, u".PDF"_s})}};
        ObservedDirectory paused = ObservedDirectory::make(QUrl::fromLocalFile(other), "b");
        paused.lifecycle.isStopped = true;

        f.coordinator.startObservingAtLaunch({running, paused});
        QCOMPARE(f.coordinator.observationStatus(QUrl::fromLocalFile(other)),
                 DirectoryObserverCoordinator::ObservationStatus::notObserving);
        QCOMPARE(f.coordinator.observationStatus(f.url()),
                 DirectoryObserverCoordinator::ObservationStatus::observing);
        QCOMPARE(f.coordinator.observer(f.url()).numberOfResponders(), 2);

        QVERIFY(Test::writeFile(f.folder + u"/nested/lower.pdf"_s, "x") && f.write(u"UPPER.PDF"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.shelves.shelves.size(), 1);
        QCOMPARE(f.shelves.shelves.first().files,
                 QList<QUrl>{QUrl::fromLocalFile(f.folder + u"/UPPER.PDF"_s)});
    }

    void restriction()
    {
        Fixture f;
        DirectoryObserver& observer = f.coordinator.observer(f.url());
        QVERIFY(f.coordinator.startObserving(observer).has_value());
        QCOMPARE(f.coordinator.startObserving(observer).error(),
                 ObservedDirectoryStartObservationError::alreadyObserving);
        QVERIFY(f.write(u"first.txt"_s));
        QVERIFY(f.pass());
        QVERIFY(f.coordinator.shelfIdentifier(f.url()).has_value());

        f.coordinator.restrictDirectory(QUrl::fromLocalFile(f.folder + u"/"_s));
        QVERIFY(!observer.isRunning());
        QVERIFY(!f.coordinator.shelfIdentifier(f.url()).has_value());
        QCOMPARE(f.coordinator.observationStatus(f.url()),
                 DirectoryObserverCoordinator::ObservationStatus::restricted);
        QCOMPARE(f.coordinator.startObserving(observer).error(),
                 ObservedDirectoryStartObservationError::restricted);

        // Equality, not containment: a folder inside may still be watched.
        const QUrl inner = QUrl::fromLocalFile(f.folder + u"/inner"_s);
        QVERIFY(QDir().mkpath(inner.toLocalFile()));
        QVERIFY(f.coordinator.startObserving(f.coordinator.observer(inner)).has_value());
        QCOMPARE(f.coordinator.observationStatus(inner),
                 DirectoryObserverCoordinator::ObservationStatus::observing);

        QVERIFY(f.coordinator.removeObserver(inner));
        QVERIFY(!f.coordinator.removeObserver(inner));
        QCOMPARE(f.coordinator.observationStatus(inner),
                 DirectoryObserverCoordinator::ObservationStatus::notObserving);
    }

    void changesWithNowhereToGoAreDropped()
    {
        Fixture f;
        f.coordinator.setDataSource(nullptr);
        QVERIFY(f.coordinator.startObserving(f.coordinator.observer(f.url())).has_value());
        Test::LogCapture log;
        QVERIFY(f.write(u"lost.txt"_s));
        QVERIFY(f.pass());
        QVERIFY(log.contains(u"but we don't have any datasource to obtain a drag session coordinator"_s));

        // A file gone before its report is handled gives no item.
        f.coordinator.setDataSource(&f.shelves);
        QVERIFY(f.write(u"fleeting.txt"_s));
        f.watcher.fireAll();
        f.clock.advance(400ms);
        QVERIFY(QFile::remove(f.folder + u"/fleeting.txt"_s));
        QCoreApplication::sendPostedEvents();
        QVERIFY(f.shelves.shelves.isEmpty());
        QVERIFY(log.contains(u"Failed to map the new items to draggable files"_s));

        QVERIFY(f.write(u"kept.txt"_s));
        QVERIFY(f.pass());
        QCOMPARE(f.shelves.shelves.size(), 1);
        QCOMPARE(f.shelves.shelves.first().files,
                 QList<QUrl>{QUrl::fromLocalFile(f.folder + u"/kept.txt"_s)});
    }
};

QTEST_GUILESS_MAIN(TestDirectoryObserverCoordinator)
#include "TestDirectoryObserverCoordinator.moc"
