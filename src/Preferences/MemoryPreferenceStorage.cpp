// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "MemoryPreferenceStorage.h"

namespace Vantrope {

MemoryPreferenceStorage::MemoryPreferenceStorage(std::map<PreferenceKey, QVariant> values)
    : m_storage(std::move(values))
{}

std::optional<QVariant> MemoryPreferenceStorage::value(PreferenceKey key) const
{
    const auto it = m_storage.find(key);
    if (it == m_storage.end()) {
        return std::nullopt;
    }
    return it->second;
}

void MemoryPreferenceStorage::setValue(PreferenceKey key, const QVariant& value)
{
    if (value.isNull()) {
        m_storage.erase(key);
        return;
    }
    m_storage.insert_or_assign(key, value);
}

} // namespace Vantrope
