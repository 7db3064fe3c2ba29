// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope::URL {

// The application data directory ($XDG_DATA_HOME/vantrope); stores such as the recent shelves live here.
// Absent when no writable location can be found.
std::optional<QString> groupContainer();

// Direct subdirectories of a directory, sorted by name; symbolic links to directories are left out.
QList<QUrl> subdirectories(const QUrl& directory);

// The inode of the file, stable across renames on one file system. Absent when the file cannot be stat'ed.
std::optional<quint64> systemFileNumber(const QUrl& url);

// Names of the file's extended attributes; absent when they cannot be read, empty where the file system
// keeps none.
std::optional<QStringList> extendedAttributes(const QUrl& url);

// True when `url` is `other` or lies below it (path components, not string prefixes).
bool isWithin(const QUrl& url, const QUrl& other);

// The containing directory.
QUrl directory(const QUrl& url);

// True when the file lies in a freedesktop Trash "files" folder.
bool isInTrash(const QUrl& url);

// The freedesktop Trash "files" folders that may hold files of `url`'s file system.
QStringList trashFilesDirectories(const QUrl& url);

// A download whose origin was recorded ("user.xdg.origin.url" or "user.xdg.referrer.url").
bool isQuarantined(const QStringList& extendedAttributeNames);
bool isQuarantined(const QUrl& url);

} // namespace Vantrope::URL
