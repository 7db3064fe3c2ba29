// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <compare>
#include <optional>
#include <QList>
#include <QString>

namespace Vantrope {

// A dotted version number such as "2.4" or "1.10.3". Missing trailing components count as zero, so
// "2.4" equals "2.4.0" and "1.10" is newer than "1.9".
class SemanticVersion final {
public:
    static std::optional<SemanticVersion> fromRawValue(const QString& rawValue);

    QString rawValue() const { return m_rawValue; }
    const QList<int>& components() const { return m_components; }

    std::strong_ordering operator<=>(const SemanticVersion& other) const;
    bool operator==(const SemanticVersion& other) const;

private:
    QString m_rawValue;
    QList<int> m_components;
};

} // namespace Vantrope
