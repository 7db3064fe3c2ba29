// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionLabel.h"

#include <algorithm>

namespace Vantrope {

namespace {

const QString s_colorKey = QStringLiteral("color");
const QString s_colorVisibilityKey = QStringLiteral("colorVisibility");
const QString s_userDefinedKey = QStringLiteral("userDefined");
const QString s_keepInOwnSpaceKey = QStringLiteral("keepInOwnSpace");
const QString s_nameKey = QStringLiteral("name");
const QString s_pinnedKey = QStringLiteral("pinned");

std::expected<bool, DragSessionLabel::Error> boolean(const QJsonObject& object, const QString& key)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined()) {
        return std::unexpected(DragSessionLabel::Error{key, QStringLiteral("is missing")});
    }
    if (!value.isBool()) {
        return std::unexpected(DragSessionLabel::Error{key, QStringLiteral("is not a Boolean")});
    }
    return value.toBool();
}

} // namespace

QString DragSessionLabel::Error::description() const
{
    if (key.isEmpty()) {
        return QStringLiteral("Cannot read a shelf label: %1").arg(reason);
    }
    return QStringLiteral("Cannot read a shelf label: \"%1\" %2").arg(key, reason);
}

DragSessionLabel DragSessionLabel::gray(bool keepInOwnSpace)
{
    DragSessionLabel label;
    label.color = DragSessionLabelColor(DragSessionLabelColor::Identifier::monochrome);
    label.keepInOwnSpace = keepInOwnSpace;
    return label;
}

std::optional<QString> DragSessionLabel::cleanName(QStringView name)
{
    QString line;
    line.reserve(std::min(name.size(), maximumNameLength + 1));
    bool pendingSpace = false;
    for (const QChar c : name) {
        const auto category = c.category();
        const bool breaks = c == u'\n' || c == u'\r' || c == u'\t' || c == u'\v' || c == u'\f' ||
                            category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
        if (breaks) {
            // "a\r\nb" is one gap, not two, and so is "a \nb".
            pendingSpace = !line.isEmpty() && !line.back().isSpace();
            continue;
        }
        if (category == QChar::Other_Control || (line.isEmpty() && c.isSpace())) {
            continue;
        }
        if (pendingSpace && !c.isSpace()) {
            line += u' ';
        }
        pendingSpace = false;
        line += c;
        if (line.size() > maximumNameLength + 1) {
            break;
        }
    }
    line = line.trimmed();
    if (line.size() > maximumNameLength) {
        // Never keep half of a surrogate pair.
        qsizetype cut = maximumNameLength;
        if (line.at(cut - 1).isHighSurrogate()) {
            --cut;
        }
        line.truncate(cut);
        line = line.trimmed();
    }
    if (line.isEmpty()) {
        return std::nullopt;
    }
    return line;
}

QString DragSessionLabel::rawValue(ColorVisibility visibility)
{
    switch (visibility) {
    case ColorVisibility::onMouseOver:
        return QStringLiteral("onMouseOver");
    case ColorVisibility::always:
        return QStringLiteral("always");
    }
    return {};
}

std::optional<DragSessionLabel::ColorVisibility>
DragSessionLabel::colorVisibilityFromRawValue(QStringView rawValue)
{
    for (const ColorVisibility visibility : {ColorVisibility::onMouseOver, ColorVisibility::always}) {
        if (DragSessionLabel::rawValue(visibility) == rawValue) {
            return visibility;
        }
    }
    return std::nullopt;
}

QJsonObject DragSessionLabel::toJson() const
{
    QJsonObject object{
        {s_colorKey, color.toJson()},    {s_colorVisibilityKey, rawValue(colorVisibility)},
        {s_userDefinedKey, userDefined}, {s_keepInOwnSpaceKey, keepInOwnSpace},
        {s_pinnedKey, pinned},
    };
    if (name) {
        object.insert(s_nameKey, *name);
    }
    return object;
}

std::expected<DragSessionLabel, DragSessionLabel::Error> DragSessionLabel::fromJson(const QJsonValue& json)
{
    if (!json.isObject()) {
        return std::unexpected(Error{QString(), QStringLiteral("the label is not an object")});
    }
    const QJsonObject object = json.toObject();
    DragSessionLabel label;

    const QJsonValue color = object.value(s_colorKey);
    if (color.isUndefined()) {
        return std::unexpected(Error{s_colorKey, QStringLiteral("is missing")});
    }
    auto decodedColor = DragSessionLabelColor::fromJson(color);
    if (!decodedColor) {
        return std::unexpected(Error{s_colorKey, decodedColor.error().reason});
    }
    label.color = *decodedColor;

    const QJsonValue visibility = object.value(s_colorVisibilityKey);
    if (visibility.isUndefined()) {
        return std::unexpected(Error{s_colorVisibilityKey, QStringLiteral("is missing")});
    }
    if (!visibility.isString()) {
        return std::unexpected(Error{s_colorVisibilityKey, QStringLiteral("is not a string")});
    }
    const auto decodedVisibility = colorVisibilityFromRawValue(visibility.toString());
    if (!decodedVisibility) {
        return std::unexpected(Error{
            s_colorVisibilityKey, QStringLiteral("has the unknown value \"%1\"").arg(visibility.toString())});
    }
    label.colorVisibility = *decodedVisibility;

    for (const auto& [key, field] :
         {std::pair{&s_userDefinedKey, &label.userDefined},
          std::pair{&s_keepInOwnSpaceKey, &label.keepInOwnSpace}, std::pair{&s_pinnedKey, &label.pinned}}) {
        const auto value = boolean(object, *key);
        if (!value) {
            return std::unexpected(value.error());
        }
        *field = *value;
    }

    // An absent name may also have been written as null.
    const QJsonValue name = object.value(s_nameKey);
    if (!name.isUndefined() && !name.isNull()) {
        if (!name.isString()) {
            return std::unexpected(Error{s_nameKey, QStringLiteral("is not a string")});
        }
        label.name = name.toString();
    }
    return label;
}

} // namespace Vantrope
