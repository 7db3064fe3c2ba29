// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/AdaptiveColor.h"

#include <array>
#include <expected>
#include <optional>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringView>

namespace Vantrope {

// The colour of a shelf's label. Only the identifier is stored; the colours come from the table, so
// a change of design reaches saved shelves too.
class DragSessionLabelColor final {
public:
    // Raw strings equal the names. The order is that of the colour picker.
    enum class Identifier { monochrome, orange, yellow, green, turquoise, blue, pink, coral, khaki, spring };

    struct Error {
        QString reason;
    };

    DragSessionLabelColor() = default;
    explicit DragSessionLabelColor(Identifier id)
        : m_id(id)
    {}

    Identifier id() const { return m_id; }
    AdaptiveColor color() const;

    static QString rawValue(Identifier id);
    // The colour's name in the user's language, as the swatches show it.
    static QString title(Identifier id);
    static std::optional<Identifier> identifier(QStringView rawValue);
    static const std::array<Identifier, 10>& allIdentifiers();

    QJsonObject toJson() const;
    static std::expected<DragSessionLabelColor, Error> fromJson(const QJsonValue& json);

    bool operator==(const DragSessionLabelColor&) const = default;

private:
    Identifier m_id = Identifier::monochrome;
};

} // namespace Vantrope
