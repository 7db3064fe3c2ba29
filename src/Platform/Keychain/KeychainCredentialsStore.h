// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Sharing/ServiceCredentialsStore.h"
#include "VantropeKeychain.h"

#include <QSet>

namespace Vantrope {

// Service logins in the secret store. Every store of the process shares one set of the accounts known
// to hold credentials, so that asking whether a service is set up does not wake the secret store each
// time a menu is built.
class KeychainCredentialsStore final : public ServiceCredentialsStore {
public:
    explicit KeychainCredentialsStore(VantropeKeychain keychain = VantropeKeychain());

    // Why the last read or write failed, for the settings to show; empty after a success.
    QString lastError() const { return m_lastError; }

protected:
    std::optional<QByteArray> readJson(const QString& account) override;
    bool storeJson(const QString& account, const QByteArray& json) override;
    bool removeItem(const QString& account) override;
    bool hasItem(const QString& account) override;

private:
    VantropeKeychain m_keychain;
    QString m_lastError;
};

} // namespace Vantrope
