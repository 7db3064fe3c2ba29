// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QDebug>
#include <QString>
#include <QUrl>
#include <variant>

namespace Vantrope {

// What a finished action leaves for the shelf to show. The upload services add their own results
// (a link with what is needed to delete it later) as further alternatives before `Message`.
struct ActionResultContext {
    // A link to what was shared; it goes to the clipboard and into the share history.
    struct Link {
        QUrl url;
        bool operator==(const Link&) const = default;
    };
    // A line for the transient message over the shelf.
    struct Message {
        QString body;
        bool operator==(const Message&) const = default;
    };
    struct None {
        bool operator==(const None&) const = default;
    };

    std::variant<Link, Message, None> value = None{};

    bool operator==(const ActionResultContext&) const = default;
};

QDebug operator<<(QDebug debug, const ActionResultContext& context);

} // namespace Vantrope
