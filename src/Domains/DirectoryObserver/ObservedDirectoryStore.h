// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ObservedDirectory.h"

#include <QList>
#include <QObject>
#include <QString>

namespace Vantrope {

// The user's list of watched folders, kept in ".observed_directories" in the application data folder.
// A file that cannot be decoded leaves the list empty; it is kept aside, not destroyed, by the next
// save. Main thread only.
class ObservedDirectoryStore final : public QObject {
    Q_OBJECT
public:
    // The application-wide name under which other parts listen for `didUpdateItems`.
    static constexpr QLatin1StringView didUpdateNotificationName{
        "ApplicationScriptsStoreDidUpdateApplicationScriptsDidUpdateItems"};

    // Loads the file at once. An empty `filePath` means the usual place.
    explicit ObservedDirectoryStore(const QString& filePath = {}, bool requiresBookmarkDataResolving = true,
                                    QObject* parent = nullptr);

    static QString defaultFilePath();

    QString filePath() const { return m_filePath; }
    bool requiresBookmarkDataResolving() const { return m_requiresBookmarkDataResolving; }
    // In order of insertion.
    QList<ObservedDirectory> items() const { return m_items; }

    // Inserts, or replaces the item with the same identifier in its place. False when the list could
    // not be written; the list in memory keeps the change all the same.
    bool saveItem(const ObservedDirectory& item);
    // False when no item has that identifier, or the list could not be written.
    bool deleteItem(const ObservedDirectory& item);

Q_SIGNALS:
    // Emitted later on the main thread after each save or delete.
    void didUpdateItems();

private:
    void loadFromDisk();
    QList<ObservedDirectory> securityScopedResolvedItems(const QList<ObservedDirectory>& items) const;
    bool synchronize();
    void postUpdate();

    QString m_filePath;
    bool m_requiresBookmarkDataResolving;
    QList<ObservedDirectory> m_items;
    // The file on disk could not be decoded; the next save keeps it aside first.
    bool m_keepFileAside = false;
};

} // namespace Vantrope
