// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Preference.h"
#include "PreferenceKey.h"
#include "PreferenceStorage.h"

#include <array>
#include <concepts>
#include <functional>
#include <memory>
#include <QLoggingCategory>
#include <QObject>
#include <type_traits>

Q_DECLARE_LOGGING_CATEGORY(lcPreferences)

namespace Vantrope {

// The typed store of all user settings. Touched on the main thread only.
class Preferences final : public QObject {
    Q_OBJECT

public:
    explicit Preferences(std::unique_ptr<PreferenceStorage> storage, QObject* parent = nullptr);
    ~Preferences() override;

    PreferenceStorage& storage() const { return *m_storage; }

    // Created on first use and kept for the life of this object.
    template<typename T> Preference<T>& preference(TypedPreferenceKey<T> key)
    {
        return ensurePreference(key);
    }
    template<typename T> const Preference<T>& preference(TypedPreferenceKey<T> key) const
    {
        return ensurePreference(key);
    }

    template<typename T> std::optional<T> storedValue(TypedPreferenceKey<T> key) const
    {
        return preference(key).storedValue();
    }

    // The stored value, else the key's default from the preference table.
    template<typename T> T value(TypedPreferenceKey<T> key) const requires std::default_initializable<T>
    {
        return preference(key).value();
    }

    template<typename T> void setValue(TypedPreferenceKey<T> key, const std::type_identity_t<T>& value)
    {
        preference(key).setValue(value);
    }

    template<typename T> void removeValue(TypedPreferenceKey<T> key) { preference(key).removeValue(); }

    // Writes the first-run values (`PreferenceDefaultUse`) of the keys that hold no value of their type,
    // and leaves every stored value alone. Runs at every start. `keyboardActionDefaults` runs last: the
    // keyboard actions register their own defaults once that feature exists.
    void registerDefaults(const std::function<void(Preferences&)>& keyboardActionDefaults = {});

    void sync();

Q_SIGNALS:
    void changed(Vantrope::PreferenceKey key);

private:
    template<typename T> Preference<T>& ensurePreference(TypedPreferenceKey<T> key) const
    {
        std::unique_ptr<PreferenceBase>& slot = m_preferences[preferenceKeyIndex(key.key())];
        if (!slot) {
            // Creation is lazy, so const reads create too; only writes, which go through a non-const
            // Preference, ever call the observer.
            auto* self = const_cast<Preferences*>(this);
            slot = std::make_unique<Preference<T>>(
                key, *m_storage, [self](PreferenceKey written) { Q_EMIT self->changed(written); });
        }
        return static_cast<Preference<T>&>(*slot);
    }

    template<typename T> void registerDefault(TypedPreferenceKey<T> key, const std::optional<T>& value);

    std::unique_ptr<PreferenceStorage> m_storage;
    mutable std::array<std::unique_ptr<PreferenceBase>, preferenceKeyCount> m_preferences;
};

} // namespace Vantrope
