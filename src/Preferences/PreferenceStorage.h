// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PreferenceKey.h"

#include <optional>
#include <QVariant>

namespace Vantrope {

// Where preference values live. Storage is untyped: the type rules belong to `Preference`, so a
// storage hands back whatever it holds, of any type.
class PreferenceStorage {
public:
    virtual ~PreferenceStorage() = default;
    PreferenceStorage(const PreferenceStorage&) = delete;
    PreferenceStorage& operator=(const PreferenceStorage&) = delete;

    virtual std::optional<QVariant> value(PreferenceKey key) const = 0;
    // A null value removes the key.
    virtual void setValue(PreferenceKey key, const QVariant& value) = 0;
    // Picks up what other processes wrote since the last sync. Own writes are persisted at once.
    virtual void sync() {}
    // Writes between the two calls may be saved together, once, at `endBatch()`.
    virtual void beginBatch() {}
    virtual void endBatch() {}

protected:
    PreferenceStorage() = default;
};

} // namespace Vantrope
