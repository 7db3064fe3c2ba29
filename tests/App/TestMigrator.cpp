// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "App/Migrator.h"
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

using Comparison = DirectoryObserverItemMatcher::StringMatching::Comparison;

// Folders as an older version stored them: rules without operators.
QByteArray olderFile(const QString& root)
{
    ObservedDirectory withRules = ObservedDirectory::make(QUrl::fromLocalFile(root + u"/a"_s), "a");
    withRules.matchers = {DirectoryObserverItemMatcher::fileName({Comparison::endsWith, u".pdf"_s}),
                          DirectoryObserverItemMatcher::fileName({Comparison::startsWith, u"invoice"_s})};
    withRules.options.observesNestedDirectories = true;
    withRules.lifecycle.isStopped = true;
    const ObservedDirectory without = ObservedDirectory::make(QUrl::fromLocalFile(root + u"/b"_s), "b");
    return QJsonDocument(QJsonArray{withRules.toJson(), without.toJson()}).toJson();
}

} // namespace

class TestMigrator final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void oldRulesBecomeFiltersOnce()
    {
        QTemporaryDir root;
        const QString path = root.filePath(u".observed_directories"_s);
        QVERIFY(Test::writeFile(path, olderFile(root.path())));
        {
            ObservedDirectoryStore store(path, false);
            QVERIFY(Migrator::performWatchedFoldersFilterMigration(store));
        }
        ObservedDirectoryStore reread(path, false);
        QCOMPARE(reread.items().size(), 2);
        const ObservedDirectory migrated = reread.items().first();
        QVERIFY(migrated.matchers.isEmpty());
        QCOMPARE(migrated.filters.size(), 2);
        for (const DirectoryObserverFilter& filter : migrated.filters) {
            QCOMPARE(filter.operatorType, DirectoryObserverFilter::OperatorType::And);
        }
        QCOMPARE(migrated.filters.at(1).matcher,
                 DirectoryObserverItemMatcher::fileName({Comparison::startsWith, u"invoice"_s}));
        // Everything else about the folder stays as the user left it.
        QVERIFY(migrated.options.observesNestedDirectories);
        QVERIFY(migrated.lifecycle.isStopped);
        QVERIFY(reread.items().at(1).filters.isEmpty());

        // A second start finds nothing to do and leaves the file alone.
        const QByteArray once = Test::readFile(path);
        QVERIFY(Migrator::performWatchedFoldersFilterMigration(reread));
        QCOMPARE(Test::readFile(path), once);
    }

    void aFileThatCannotBeWrittenKeepsTheOldRules()
    {
        QTemporaryDir root;
        const QString path = root.filePath(u".observed_directories"_s);
        const QByteArray older = olderFile(root.path());
        QVERIFY(Test::writeFile(path, older));
        ObservedDirectoryStore store(path, false);
        // The folder holding the file refuses new files, as a full or read-only disk does.
        QVERIFY(QFile::setPermissions(root.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        // Run as root, the test first gives up what lets it write anywhere; the folder it names is none.
        const Test::UnreadableFolder withoutOverride(root.path() + u"/none"_s);
        const bool refused = !Test::writeFile(root.filePath(u"probe"_s), "x");
        if (refused) {
            QVERIFY(!Migrator::performWatchedFoldersFilterMigration(store));
            QCOMPARE(store.items().first().matchers.size(), 2);
        }
        QFile::setPermissions(root.path(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        if (!refused) {
            QSKIP("this process writes into any folder");
        }
        QCOMPARE(Test::readFile(path), older);
    }
};

QTEST_GUILESS_MAIN(TestMigrator)
#include "TestMigrator.moc"
