// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// The shelves, as watched folders need them. The root coordinator implements this.
class DirectoryObserverCoordinatorDataSource {
public:
    virtual ~DirectoryObserverCoordinatorDataSource() = default;

    // Adds the files to the open shelf with this identifier. False when that shelf has been closed.
    virtual bool appendFiles(const QString& shelfIdentifier, const QList<QUrl>& files) = 0;
    // Opens a new shelf holding the files and returns its identifier; absent when none could open.
    virtual std::optional<QString> createShelf(const QList<QUrl>& files) = 0;
    // A short message over the shelf's window.
    virtual void showMessage(const QString& shelfIdentifier, const QString& text) = 0;
};

} // namespace Vantrope
