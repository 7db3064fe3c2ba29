// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <chrono>
#include <expected>
#include <QString>

namespace Vantrope {

// Strings in the desktop's secret store (the Secret Service: GNOME Keyring, KWallet, KeePassXC...),
// under one service name and an account name each. Never a plain file: where no secret store runs, every
// call fails and says so. Calls block until the store answers, so call it off the main thread where a
// store may ask the user to unlock it.
class VantropeKeychain final {
public:
    struct Error {
        enum class Kind { failedWriting, failedReading, failedDeleting, invalidValue, itemNotFound };
        Kind kind = Kind::failedReading;
        // The secret store library's error code, 0 when none.
        int status = 0;
        // The store's words; never the secret.
        QString message;
        QString description() const;
    };

    static constexpr std::chrono::seconds timeout{30};

    explicit VantropeKeychain(QString service = QStringLiteral("service-credentials"));

    const QString& service() const { return m_service; }

    std::expected<bool, Error> itemExists(const QString& account) const;
    std::expected<QString, Error> readString(const QString& account) const;
    // Replaces what the account held.
    std::expected<void, Error> writeString(const QString& account, const QString& value) const;
    // An absent item is no failure.
    std::expected<void, Error> deleteItem(const QString& account) const;

private:
    QString m_service;
};

} // namespace Vantrope
