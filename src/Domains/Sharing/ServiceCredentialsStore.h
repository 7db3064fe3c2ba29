// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace Vantrope {

// Where the logins of upload services are kept. A credentials type names its account and has
// `toJson()`/`fromJson()`; a failed read, a locked store or JSON that does not decode all count as no
// credentials, so that nothing of this ever keeps the program from working.
class ServiceCredentialsStore {
public:
    virtual ~ServiceCredentialsStore() = default;

    template<typename Credentials> std::optional<Credentials> read()
    {
        const std::optional<QByteArray> json = readJson(Credentials::accountName());
        return json ? Credentials::fromJson(*json) : std::nullopt;
    }
    template<typename Credentials> bool store(const Credentials& credentials)
    {
        return storeJson(Credentials::accountName(), credentials.toJson());
    }
    template<typename Credentials> bool remove() { return removeItem(Credentials::accountName()); }
    template<typename Credentials> bool has() { return hasItem(Credentials::accountName()); }

protected:
    virtual std::optional<QByteArray> readJson(const QString& account) = 0;
    virtual bool storeJson(const QString& account, const QByteArray& json) = 0;
    // True when the item is gone, also when there was none.
    virtual bool removeItem(const QString& account) = 0;
    virtual bool hasItem(const QString& account) = 0;
};

} // namespace Vantrope
