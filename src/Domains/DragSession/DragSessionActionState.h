// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QString>
#include <QUrl>
#include <variant>

namespace Vantrope {

// What a shelf shows about an action or upload in progress.
struct DragSessionActionState {
    struct None {
        bool operator==(const None&) const = default;
    };
    struct Loading {
        double progress = 0;
        QString title;
        bool operator==(const Loading&) const = default;
    };
    struct Error {
        QString title;
        QString body;
        bool operator==(const Error&) const = default;
    };
    struct Confirmation {
        QUrl url;
        bool operator==(const Confirmation&) const = default;
    };

    std::variant<None, Loading, Error, Confirmation> value;

    bool isNone() const { return std::holds_alternative<None>(value); }
    bool operator==(const DragSessionActionState&) const = default;
};

} // namespace Vantrope
