// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SemanticVersion.h"

#include <QRegularExpression>
#include <QStringList>

namespace Vantrope {

std::optional<SemanticVersion> SemanticVersion::fromRawValue(const QString& rawValue)
{
    QString text = rawValue.trimmed();
    if (text.startsWith(QLatin1Char('v')) || text.startsWith(QLatin1Char('V'))) {
        text.remove(0, 1);
    }
    // Pre-release and build suffixes do not take part in the order we need.
    const qsizetype suffix = text.indexOf(QRegularExpression(QStringLiteral("[-+]")));
    if (suffix >= 0) {
        text.truncate(suffix);
    }
    if (text.isEmpty()) {
        return std::nullopt;
    }
    SemanticVersion version;
    version.m_rawValue = rawValue;
    const QStringList parts = text.split(QLatin1Char('.'));
    for (const QString& part : parts) {
        bool ok = false;
        const int value = part.toInt(&ok);
        if (!ok || value < 0 || part.isEmpty() || !part.at(0).isDigit()) {
            return std::nullopt;
        }
        version.m_components.append(value);
    }
    return version;
}

std::strong_ordering SemanticVersion::operator<=>(const SemanticVersion& other) const
{
    const qsizetype length = std::max(m_components.size(), other.m_components.size());
    for (qsizetype i = 0; i < length; ++i) {
        const int mine = i < m_components.size() ? m_components[i] : 0;
        const int theirs = i < other.m_components.size() ? other.m_components[i] : 0;
        if (mine != theirs) {
            return mine <=> theirs;
        }
    }
    return std::strong_ordering::equal;
}

bool SemanticVersion::operator==(const SemanticVersion& other) const
{
    return (*this <=> other) == std::strong_ordering::equal;
}

} // namespace Vantrope
