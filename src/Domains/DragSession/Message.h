// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QString>

namespace Vantrope {

// A transient message shown over a shelf.
struct Message {
    enum class Icon { warning, error, info, screenshot };

    Icon icon = Icon::info;
    // A plain message has only `text`; a highlighted one has a title too.
    std::optional<QString> title;
    QString text;
    std::optional<QString> identifier;

    static Message plain(Icon icon, QString text, std::optional<QString> identifier = std::nullopt)
    {
        return {icon, std::nullopt, std::move(text), std::move(identifier)};
    }
    static Message highlighted(Icon icon, QString title, QString text,
                               std::optional<QString> identifier = std::nullopt)
    {
        return {icon, std::move(title), std::move(text), std::move(identifier)};
    }

    bool operator==(const Message&) const = default;
};

} // namespace Vantrope
