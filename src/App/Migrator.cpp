// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Migrator.h"

#include "AppLogging.h"
#include "Domains/DirectoryObserver/ObservedDirectoryStore.h"

namespace Vantrope {

bool Migrator::performWatchedFoldersFilterMigration(ObservedDirectoryStore& store)
{
    QList<ObservedDirectory> migrated;
    for (ObservedDirectory directory : store.items()) {
        if (directory.matchers.isEmpty()) {
            continue;
        }
        for (const DirectoryObserverItemMatcher& matcher : directory.matchers) {
            directory.filters.append({DirectoryObserverFilter::OperatorType::And, matcher});
        }
        directory.matchers.clear();
        migrated.append(directory);
    }
    if (migrated.isEmpty()) {
        return true;
    }
    qCInfo(lcApp) << "Performing Watched Folders filter migration...";
    const QList<ObservedDirectory> before = store.items();
    for (const ObservedDirectory& directory : migrated) {
        if (!store.saveItem(directory)) {
            // The list in memory takes each change even when the file refuses it; put the old rules back
            // so that the next start migrates them again from the file as it stands.
            for (const ObservedDirectory& original : before) {
                store.saveItem(original);
            }
            qCWarning(lcApp).noquote()
                << QStringLiteral("Failed to perform Watched Folders filter migration with error ") +
                       QStringLiteral("could not write %1").arg(store.filePath());
            return false;
        }
    }
    qCInfo(lcApp) << "Succesfully performed Watched Folders filter migration";
    return true;
}

} // namespace Vantrope
