// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragSessionLabelColor.h"

#include <expected>
#include <optional>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringView>

namespace Vantrope {

// The small identity of a shelf. A value: every change replaces the whole label.
struct DragSessionLabel final {
    enum class ColorVisibility { onMouseOver, always };

    struct Error {
        QString key;
        QString reason;
        QString description() const;
    };

    DragSessionLabelColor color;
    ColorVisibility colorVisibility = ColorVisibility::onMouseOver;
    // The user chose this label, so automatic recolouring leaves it alone.
    bool userDefined = false;
    // The window stays in the desktop where it opened instead of following the user.
    bool keepInOwnSpace = false;
    std::optional<QString> name;
    bool pinned = false;

    // Longer names are cut here: a title is one line on a small window, and a pasted page must not
    // end up in every save of the shelf.
    static constexpr qsizetype maximumNameLength = 256;

    // The label of a shelf while labels are turned off: gray and nameless.
    static DragSessionLabel gray(bool keepInOwnSpace);

    // A name as the shelf keeps it: one line (line breaks and tabs become spaces), trimmed, at most
    // `maximumNameLength` characters. Nothing left means no name.
    static std::optional<QString> cleanName(QStringView name);

    static QString rawValue(ColorVisibility visibility);
    static std::optional<ColorVisibility> colorVisibilityFromRawValue(QStringView rawValue);

    QJsonObject toJson() const;
    static std::expected<DragSessionLabel, Error> fromJson(const QJsonValue& json);

    bool operator==(const DragSessionLabel&) const = default;
};

} // namespace Vantrope
