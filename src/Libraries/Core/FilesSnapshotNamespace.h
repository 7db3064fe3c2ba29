// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>
#include <utility>

namespace Vantrope {

// Keeps apart the snapshots of unrelated users of FilesSnapshotController, so that purging one set
// never touches another.
class FilesSnapshotNamespace final {
public:
    explicit FilesSnapshotNamespace(QString name)
        : m_name(std::move(name))
    {}

    // The recent shelves' snapshots.
    static FilesSnapshotNamespace defaultNamespace()
    {
        return FilesSnapshotNamespace(QStringLiteral("default"));
    }

    const QString& name() const { return m_name; }

    bool operator==(const FilesSnapshotNamespace&) const = default;

private:
    QString m_name;
};

} // namespace Vantrope
