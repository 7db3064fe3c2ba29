// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PreferenceStorage.h"

#include <map>

namespace Vantrope {

// Keeps values in memory only, for tests and for runs that must not touch the user's file.
class MemoryPreferenceStorage final : public PreferenceStorage {
public:
    MemoryPreferenceStorage() = default;
    explicit MemoryPreferenceStorage(std::map<PreferenceKey, QVariant> values);

    std::optional<QVariant> value(PreferenceKey key) const override;
    void setValue(PreferenceKey key, const QVariant& value) override;

    const std::map<PreferenceKey, QVariant>& storage() const { return m_storage; }

private:
    std::map<PreferenceKey, QVariant> m_storage;
};

} // namespace Vantrope
