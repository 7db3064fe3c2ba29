// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionLabelColor.h"

#include "Libraries/Core/Localized.h"

namespace Vantrope {

namespace {

constexpr std::array<DragSessionLabelColor::Identifier, 10> s_identifiers = {
    DragSessionLabelColor::Identifier::monochrome, DragSessionLabelColor::Identifier::orange,
    DragSessionLabelColor::Identifier::yellow,     DragSessionLabelColor::Identifier::green,
    DragSessionLabelColor::Identifier::turquoise,  DragSessionLabelColor::Identifier::blue,
    DragSessionLabelColor::Identifier::pink,       DragSessionLabelColor::Identifier::coral,
    DragSessionLabelColor::Identifier::khaki,      DragSessionLabelColor::Identifier::spring,
};

static_assert([] {
    for (std::size_t i = 0; i < s_identifiers.size(); ++i) {
        if (static_cast<std::size_t>(s_identifiers[i]) != i) {
            return false;
        }
    }
    return true;
}());

constexpr std::array<QStringView, 10> s_rawValues = {
    u"monochrome", u"orange", u"yellow", u"green", u"turquoise",
    u"blue",       u"pink",   u"coral",  u"khaki", u"spring",
};

AdaptiveColor pair(double r1, double g1, double b1, double r2, double g2, double b2)
{
    return AdaptiveColor(QColor::fromRgbF(float(r1), float(g1), float(b1)),
                         QColor::fromRgbF(float(r2), float(g2), float(b2)));
}

AdaptiveColor same(double r, double g, double b)
{
    return pair(r, g, b, r, g, b);
}

} // namespace

AdaptiveColor DragSessionLabelColor::color() const
{
    switch (m_id) {
    case Identifier::monochrome:
        // A neutral gray, a shade lighter on dark backgrounds.
        return pair(0.56, 0.56, 0.58, 0.6, 0.6, 0.62);
    case Identifier::orange:
        return pair(1.0, 0.46, 0.31, 0.85, 0.46, 0.21);
    case Identifier::yellow:
        return pair(1.0, 0.78, 0.09, 0.89, 0.71, 0.14);
    case Identifier::green:
        return pair(0.48, 0.82, 0.25, 0.36, 0.79, 0.06);
    case Identifier::turquoise:
        return pair(0.26, 1.0, 0.9, 0.05, 0.65, 0.57);
    case Identifier::blue:
        return pair(0.31, 0.62, 1.0, 0.19, 0.51, 0.91);
    case Identifier::pink:
        // Violet rather than pink: the identifier is a stored value, the colour a design choice.
        return pair(0.51, 0.3, 1.0, 0.5, 0.31, 0.94);
    case Identifier::coral:
        return same(0.97, 0.51, 0.47);
    case Identifier::khaki:
        return pair(0.62, 0.56, 0.0, 0.94, 0.9, 0.55);
    case Identifier::spring:
        return same(0.37, 0.55, 0.35);
    }
    return {};
}

QString DragSessionLabelColor::title(Identifier color)
{
    using Id = Identifier;
    switch (color) {
    case Id::monochrome:
        return Localized("label-color.monochrome", "Gray");
    case Id::orange:
        return Localized("label-color.orange", "Orange");
    case Id::yellow:
        return Localized("label-color.yellow", "Yellow");
    case Id::green:
        return Localized("label-color.green", "Green");
    case Id::turquoise:
        return Localized("label-color.turquoise", "Turquoise");
    case Id::blue:
        return Localized("label-color.blue", "Blue");
    case Id::pink:
        return Localized("label-color.pink", "Pink");
    case Id::coral:
        return Localized("label-color.coral", "Coral");
    case Id::khaki:
        return Localized("label-color.khaki", "Khaki");
    case Id::spring:
        return Localized("label-color.spring", "Spring");
    }
    return {};
}

QString DragSessionLabelColor::rawValue(Identifier id)
{
    return s_rawValues.at(static_cast<std::size_t>(id)).toString();
}

std::optional<DragSessionLabelColor::Identifier> DragSessionLabelColor::identifier(QStringView rawValue)
{
    for (std::size_t i = 0; i < s_rawValues.size(); ++i) {
        if (s_rawValues[i] == rawValue) {
            return s_identifiers[i];
        }
    }
    return std::nullopt;
}

const std::array<DragSessionLabelColor::Identifier, 10>& DragSessionLabelColor::allIdentifiers()
{
    return s_identifiers;
}

QJsonObject DragSessionLabelColor::toJson() const
{
    return QJsonObject{{QStringLiteral("id"), rawValue(m_id)}};
}

std::expected<DragSessionLabelColor, DragSessionLabelColor::Error>
DragSessionLabelColor::fromJson(const QJsonValue& json)
{
    if (!json.isObject()) {
        return std::unexpected(Error{QStringLiteral("the colour is not an object")});
    }
    const QJsonValue id = json.toObject().value(QStringLiteral("id"));
    if (id.isUndefined()) {
        return std::unexpected(Error{QStringLiteral("the colour has no \"id\"")});
    }
    if (!id.isString()) {
        return std::unexpected(Error{QStringLiteral("the colour \"id\" is not a string")});
    }
    const std::optional<Identifier> identifier = DragSessionLabelColor::identifier(id.toString());
    if (!identifier) {
        return std::unexpected(Error{QStringLiteral("unknown colour id \"%1\"").arg(id.toString())});
    }
    return DragSessionLabelColor(*identifier);
}

} // namespace Vantrope
