// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

namespace Vantrope {

// One item of a pasteboard: the same thing offered in several types, each a MIME type with its bytes,
// in the order the source offered them.
class PasteboardItem final {
public:
    PasteboardItem() = default;

    void setData(const QString& type, const QByteArray& data);
    bool hasType(const QString& type) const;
    QStringList types() const;
    std::optional<QByteArray> data(const QString& type) const;
    // The value as text when its bytes are valid UTF-8; absent otherwise.
    std::optional<QString> string(const QString& type) const;

    bool isEmpty() const { return m_entries.isEmpty(); }
    bool operator==(const PasteboardItem&) const = default;

private:
    QList<std::pair<QString, QByteArray>> m_entries;
};

} // namespace Vantrope
