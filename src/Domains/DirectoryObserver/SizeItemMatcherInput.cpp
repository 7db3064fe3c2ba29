// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SizeItemMatcherInput.h"

namespace Vantrope {

QString SizeItemMatcherInput::Error::description() const
{
    return QStringLiteral("%1 is too large a size").arg(text);
}

QString SizeItemMatcherInput::sanitized(const QString& text)
{
    QString digits;
    digits.reserve(text.size());
    for (const QChar character : text) {
        if (character >= QLatin1Char('0') && character <= QLatin1Char('9')) {
            digits.append(character);
        }
    }
    const bool leadingZero = digits.size() > 1 && digits.startsWith(QLatin1Char('0'));
    if (digits == text && !leadingZero) {
        return text;
    }
    qsizetype firstSignificant = 0;
    while (firstSignificant < digits.size() && digits.at(firstSignificant) == QLatin1Char('0')) {
        ++firstSignificant;
    }
    const QString trimmed = digits.mid(firstSignificant);
    return trimmed.isEmpty() ? QStringLiteral("0") : trimmed;
}

std::expected<quint64, SizeItemMatcherInput::Error> SizeItemMatcherInput::bytes(const QString& text,
                                                                                Unit unit)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    // toLongLong forgives surrounding blanks; a number field does not.
    if (!ok || text.trimmed().size() != text.size()) {
        return 0;
    }
    const double product = double(number) * double(unitSize(unit));
    if (product >= 18446744073709551616.0 || product < 0) {
        return std::unexpected(Error{Error::Kind::tooLarge, text});
    }
    return quint64(product);
}

quint64 SizeItemMatcherInput::unitSize(Unit unit)
{
    switch (unit) {
    case Unit::kiloBytes:
        return 1024;
    case Unit::megaBytes:
        return 1048576;
    case Unit::gigaBytes:
        return 1073741824;
    }
    return 1;
}

} // namespace Vantrope
