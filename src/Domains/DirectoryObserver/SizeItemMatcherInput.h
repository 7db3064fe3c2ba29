// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <QString>

namespace Vantrope {

// What the size field of the rule editor does with the user's typing, apart from any widget.
class SizeItemMatcherInput final {
public:
    enum class Unit { kiloBytes, megaBytes, gigaBytes };

    struct Error {
        enum class Kind { tooLarge };
        Kind kind = Kind::tooLarge;
        QString text;
        QString description() const;
    };

    // The text the field should show after an edit: digits only, no leading zeros ("007" is "7",
    // "abc" is "0"). Text that is already clean, the empty field included, stays as it is.
    static QString sanitized(const QString& text);

    // The payload in bytes for the field's text in `unit`, computed in double precision and truncated.
    // An empty field, or a number beyond a signed 64-bit integer, gives 0; a product of 2^64 bytes or
    // more is an error.
    static std::expected<quint64, Error> bytes(const QString& text, Unit unit);

    static quint64 unitSize(Unit unit);
};

} // namespace Vantrope
