// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "AtomicFileWriter.h"

#include <expected>
#include <QJsonArray>
#include <QString>

namespace Vantrope {

// The file behind an ItemStore: a JSON array in "<application data>/ItemStore/<identifier>.json".
class ItemStoreFile final {
public:
    // `directory` overrides the folder (tests); by default it is the application data directory.
    explicit ItemStoreFile(const QString& identifier, const QString& directory = {});

    QString identifier() const { return m_identifier; }
    QString path() const { return m_path; }

    // A missing file reads as empty. A file that is not a JSON array reads as empty with a log line and
    // is set aside, so that the next save cannot destroy it.
    QJsonArray load() const;
    std::expected<void, AtomicFileWriter::Error> save(const QJsonArray& items) const;

private:
    QString m_identifier;
    QString m_path;
};

} // namespace Vantrope
