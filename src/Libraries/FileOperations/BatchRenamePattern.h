// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace Vantrope {

// New names for a set of files from a pattern such as "Holiday {counter}" or "{date} {name}". Tokens:
// {name} the old name without its extension, {counter} the item's number from `start`, padded to
// `digits`, {date} the file's modification day (yyyy-MM-dd). The extension is kept, so a pattern never
// changes a file's type.
class BatchRenamePattern final {
public:
    struct Error {
        enum class Kind { empty, invalidName, duplicateNames };
        Kind kind = Kind::empty;
        QString name; // the offending name, where there is one
        QString description() const;
    };

    BatchRenamePattern(QString pattern, int start = 1, int digits = 1);

    // The new file name of one item at `index` (0-based) in the list.
    QString newName(const QString& path, int index) const;
    QString newName(const QString& fileName, const QDateTime& modified, int index) const;
    // The new names of all paths, in order, refused as a whole when one is not a valid file name or
    // two would be the same in one folder.
    std::expected<QStringList, Error> newNames(const QStringList& paths) const;

private:
    QString m_pattern;
    int m_start;
    int m_digits;
};

} // namespace Vantrope
