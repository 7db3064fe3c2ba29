// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <functional>
#include <QList>
#include <QString>
#include <utility>

namespace Vantrope {

// What the info window shows of one item: its name, then rows of a label and a value (kind, size,
// dates, dimensions), then the image's own metadata where there is some.
struct FileInformation {
    using Rows = QList<std::pair<QString, QString>>;
    using MetadataReader = std::function<Rows(const QString& path)>;

    QString path;
    QString name;
    QString iconName;
    Rows rows;
    Rows metadata;

    // Reads the item now; folders are counted and summed up to a limit so a huge tree cannot stall.
    static FileInformation describe(const QString& path, const MetadataReader& metadata = {});
};

} // namespace Vantrope
