// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "KeychainCredentialsStore.h"

#include "Libraries/Core/ThreadSafe.h"

#include <QLoggingCategory>

namespace Vantrope {

namespace {

Q_LOGGING_CATEGORY(lcKeychain, "vantrope.keychain")

ThreadSafe<QSet<QString>>& knownAccounts()
{
    static ThreadSafe<QSet<QString>> accounts;
    return accounts;
}

void remember(const QString& account, bool exists)
{
    knownAccounts().mutate([&](QSet<QString>& accounts) {
        if (exists) {
            accounts.insert(account);
        } else {
            accounts.remove(account);
        }
    });
}

} // namespace

KeychainCredentialsStore::KeychainCredentialsStore(VantropeKeychain keychain)
    : m_keychain(std::move(keychain))
{}

std::optional<QByteArray> KeychainCredentialsStore::readJson(const QString& account)
{
    const auto value = m_keychain.readString(account);
    if (!value) {
        if (value.error().kind != VantropeKeychain::Error::Kind::itemNotFound) {
            m_lastError = value.error().description();
            qCWarning(lcKeychain).noquote()
                << "Could not read the credentials of" << account << "-" << value.error().description();
        }
        return std::nullopt;
    }
    m_lastError.clear();
    return value->toUtf8();
}

bool KeychainCredentialsStore::storeJson(const QString& account, const QByteArray& json)
{
    const auto written = m_keychain.writeString(account, QString::fromUtf8(json));
    if (!written) {
        m_lastError = written.error().description();
        qCWarning(lcKeychain).noquote()
            << "Could not store the credentials of" << account << "-" << written.error().description();
        return false;
    }
    m_lastError.clear();
    remember(account, true);
    return true;
}

bool KeychainCredentialsStore::removeItem(const QString& account)
{
    // Forgotten first: whatever the store says, the program stops offering the service.
    remember(account, false);
    const auto deleted = m_keychain.deleteItem(account);
    if (!deleted) {
        m_lastError = deleted.error().description();
        qCWarning(lcKeychain).noquote()
            << "Could not remove the credentials of" << account << "-" << deleted.error().description();
        return false;
    }
    m_lastError.clear();
    return true;
}

bool KeychainCredentialsStore::hasItem(const QString& account)
{
    if (knownAccounts().value().contains(account)) {
        return true;
    }
    const auto exists = m_keychain.itemExists(account);
    const bool answer = exists && *exists;
    if (!exists) {
        m_lastError = exists.error().description();
    }
    remember(account, answer);
    return answer;
}

} // namespace Vantrope
