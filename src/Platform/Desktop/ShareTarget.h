// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <expected>
#include <functional>
#include <QList>
#include <QString>
#include <QUrl>

namespace Vantrope {

// A place the desktop can send files to: a mail program, a paired phone, a Bluetooth device.
struct ShareTarget {
    using Outcome = std::expected<void, QString>;
    // Hands the files over and calls `done` once, on the calling thread, with the reason when it could
    // not; called on the main thread.
    using Done = std::function<void(const Outcome& outcome)>;
    using Send = std::function<void(const QList<QUrl>& urls, const Done& done)>;

    // The target's own id: "email", "kdeconnect_<device id>", "bluetooth".
    QString identifier;
    QString title;
    QString iconName;
    Send send;
};

} // namespace Vantrope
