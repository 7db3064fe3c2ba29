// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "PreferenceDefinition.h"
#include "PreferenceKey.h"
#include "PreferenceStorage.h"

#include <concepts>
#include <functional>
#include <limits>
#include <optional>
#include <QVariant>
#include <QVariantList>
#include <utility>

namespace Vantrope {

// How a preference type is read from and written to untyped storage. Reading is strict: a value
// that is not of the type reads as absent, so a hand-edited or foreign value never turns into a
// plausible setting ("5" is no int, 1 is no bool, a single string is no list).
template<typename T> struct PreferenceValueTraits;

template<> struct PreferenceValueTraits<bool> {
    static std::optional<bool> fromVariant(const QVariant& value)
    {
        if (value.typeId() != QMetaType::Bool) {
            return std::nullopt;
        }
        return value.toBool();
    }
    static QVariant toVariant(bool value) { return value; }
};

template<> struct PreferenceValueTraits<int> {
    static std::optional<int> fromVariant(const QVariant& value)
    {
        switch (value.typeId()) {
        case QMetaType::Int:
            return value.toInt();
        case QMetaType::UInt:
        case QMetaType::ULongLong: {
            const qulonglong number = value.toULongLong();
            if (number > qulonglong(std::numeric_limits<int>::max())) {
                return std::nullopt;
            }
            return int(number);
        }
        case QMetaType::LongLong: {
            const qlonglong number = value.toLongLong();
            if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
                return std::nullopt;
            }
            return int(number);
        }
        default:
            return std::nullopt;
        }
    }
    static QVariant toVariant(int value) { return value; }
};

template<> struct PreferenceValueTraits<QString> {
    static std::optional<QString> fromVariant(const QVariant& value)
    {
        if (value.typeId() != QMetaType::QString) {
            return std::nullopt;
        }
        return value.toString();
    }
    static QVariant toVariant(const QString& value) { return value; }
};

template<> struct PreferenceValueTraits<QStringList> {
    static std::optional<QStringList> fromVariant(const QVariant& value)
    {
        if (value.typeId() == QMetaType::QStringList) {
            return value.toStringList();
        }
        if (value.typeId() != QMetaType::QVariantList) {
            return std::nullopt;
        }
        QStringList result;
        const QVariantList list = value.toList();
        result.reserve(list.size());
        for (const QVariant& element : list) {
            if (element.typeId() != QMetaType::QString) {
                return std::nullopt;
            }
            result.append(element.toString());
        }
        return result;
    }
    static QVariant toVariant(const QStringList& value) { return value; }
};

template<> struct PreferenceValueTraits<KeyCombination> {
    static std::optional<KeyCombination> fromVariant(const QVariant& value)
    {
        return KeyCombination::fromDictionary(value);
    }
    static QVariant toVariant(const KeyCombination& value) { return value.toDictionary(); }
};

template<> struct PreferenceValueTraits<KeyCombinations> {
    // An action whose combination is malformed has none; the others keep theirs.
    static std::optional<KeyCombinations> fromVariant(const QVariant& value)
    {
        if (value.typeId() != QMetaType::QVariantMap) {
            return std::nullopt;
        }
        KeyCombinations result;
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            if (const std::optional<KeyCombination> combination =
                    KeyCombination::fromDictionary(it.value())) {
                result.insert(it.key(), *combination);
            }
        }
        return result;
    }
    static QVariant toVariant(const KeyCombinations& value)
    {
        QVariantMap map;
        for (auto it = value.constBegin(); it != value.constEnd(); ++it) {
            map.insert(it.key(), it.value().toDictionary());
        }
        return map;
    }
};

template<> struct PreferenceValueTraits<QDateTime> {
    static std::optional<QDateTime> fromVariant(const QVariant& value)
    {
        if (value.typeId() != QMetaType::QDateTime || !value.toDateTime().isValid()) {
            return std::nullopt;
        }
        return value.toDateTime();
    }
    // An invalid date is no date: writing one removes the value.
    static QVariant toVariant(const QDateTime& value)
    {
        return value.isValid() ? QVariant(value) : QVariant();
    }
};

template<> struct PreferenceValueTraits<QByteArray> {
    static std::optional<QByteArray> fromVariant(const QVariant& value)
    {
        if (value.typeId() != QMetaType::QByteArray) {
            return std::nullopt;
        }
        return value.toByteArray();
    }
    static QVariant toVariant(const QByteArray& value) { return value; }
};

// Lets `Preferences` keep preferences of different value types side by side.
class PreferenceBase {
public:
    virtual ~PreferenceBase() = default;
    PreferenceBase(const PreferenceBase&) = delete;
    PreferenceBase& operator=(const PreferenceBase&) = delete;

protected:
    PreferenceBase() = default;
};

// One setting, read and written with its own type. The storage must outlive it.
template<typename T> class Preference final : public PreferenceBase {
public:
    using ValueType = T;
    using WriteObserver = std::function<void(PreferenceKey)>;

    Preference(TypedPreferenceKey<T> key, PreferenceStorage& storage, WriteObserver didWrite = {})
        : m_key(key.key())
        , m_storage(storage)
        , m_didWrite(std::move(didWrite))
    {}

    PreferenceKey key() const { return m_key; }
    PreferenceStorage& storage() const { return m_storage; }

    // Absent when nothing is stored or what is stored is not a T.
    std::optional<T> storedValue() const
    {
        const std::optional<QVariant> stored = m_storage.value(m_key);
        if (!stored) {
            return std::nullopt;
        }
        return PreferenceValueTraits<T>::fromVariant(*stored);
    }

    // The key's default from the preference table; absent for a key without one.
    std::optional<T> defaultValue() const
    {
        return PreferenceValueTraits<T>::fromVariant(PreferenceDefinition::of(m_key).defaultValue);
    }

    // The stored value, else the default, else an empty T. Reading never writes the default.
    T value() const requires std::default_initializable<T>
    {
        if (std::optional<T> stored = storedValue()) {
            return *std::move(stored);
        }
        return defaultValue().value_or(T{});
    }

    void setValue(const T& value) { write(PreferenceValueTraits<T>::toVariant(value)); }
    void removeValue() { write(QVariant()); }

private:
    void write(const QVariant& value)
    {
        m_storage.setValue(m_key, value);
        if (m_didWrite) {
            m_didWrite(m_key);
        }
    }

    PreferenceKey m_key;
    PreferenceStorage& m_storage;
    WriteObserver m_didWrite;
};

} // namespace Vantrope
