// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Preferences.h"

#include "PreferenceDefinition.h"

#include <QScopeGuard>

Q_LOGGING_CATEGORY(lcPreferences, "vantrope.preferences")

namespace Vantrope {

Preferences::Preferences(std::unique_ptr<PreferenceStorage> storage, QObject* parent)
    : QObject(parent)
    , m_storage(std::move(storage))
{
    Q_ASSERT(m_storage);
}

Preferences::~Preferences() = default;

template<typename T>
void Preferences::registerDefault(TypedPreferenceKey<T> key, const std::optional<T>& value)
{
    if (!value || storedValue(key)) {
        return;
    }
    qCDebug(lcPreferences).noquote() << "Registering the default of"
                                     << PreferenceDefinition::of(key).storedName;
    setValue(key, *value);
}

void Preferences::registerDefaults(const std::function<void(Preferences&)>& keyboardActionDefaults)
{
    using namespace PreferenceKeys;

    // A first start sets dozens of values: one save for all of them.
    m_storage->beginBatch();
    const auto saveOnce = qScopeGuard([this] { m_storage->endBatch(); });
    for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
        if (definition.defaultUse == PreferenceDefaultUse::firstRun) {
            visitPreferenceKey(definition.key,
                               [this](auto key) { registerDefault(key, preference(key).defaultValue()); });
        }
    }

    registerDefault(prefersShowInTaskbar, std::optional(value(prefersHiddenStatusItem)));
    // hasLaunchedApp is only written at the end of the first start, so the top drop zone is on for a
    // fresh installation and off for users who upgrade from a version without it.
    registerDefault(notchDragEnabled, std::optional(!value(hasLaunchedApp)));
    if (!storedValue(hasLaunchedApp)) {
        registerDefault(shelfRetractionEnabled, preference(shelfRetractionEnabled).defaultValue());
    }

    if (keyboardActionDefaults) {
        keyboardActionDefaults(*this);
    }
}

void Preferences::sync()
{
    m_storage->sync();
}

} // namespace Vantrope
