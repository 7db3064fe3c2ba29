// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsService.h"

#include "Preferences/PreferenceDefinition.h"
#include "Preferences/Preferences.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

namespace Vantrope {

namespace {

using Error = SettingsRequestHandler::Error;

template<typename T> QString text(const T& value)
{
    if constexpr (std::is_same_v<T, bool>) {
        return value ? QStringLiteral("true") : QStringLiteral("false");
    } else if constexpr (std::is_same_v<T, int>) {
        return QString::number(value);
    } else if constexpr (std::is_same_v<T, QString>) {
        return value;
    } else {
        const QJsonValue json = QJsonValue::fromVariant(PreferenceValueTraits<T>::toVariant(value));
        if (json.isArray()) {
            return QString::fromUtf8(QJsonDocument(json.toArray()).toJson(QJsonDocument::Compact));
        }
        if (json.isObject()) {
            return QString::fromUtf8(QJsonDocument(json.toObject()).toJson(QJsonDocument::Compact));
        }
        return json.toVariant().toString();
    }
}

QString typeName(PreferenceValueType type)
{
    switch (type) {
    case PreferenceValueType::Bool:
        return QStringLiteral("true or false");
    case PreferenceValueType::Int:
        return QStringLiteral("a whole number");
    case PreferenceValueType::String:
        return QStringLiteral("text");
    case PreferenceValueType::StringList:
        return QStringLiteral("a JSON list of texts, such as [\"a\", \"b\"]");
    case PreferenceValueType::KeyCombination:
    case PreferenceValueType::KeyCombinations:
        return QStringLiteral("a shortcut");
    case PreferenceValueType::Date:
        return QStringLiteral("a date");
    case PreferenceValueType::Data:
        break;
    }
    return QStringLiteral("data");
}

template<typename T> std::optional<T> parse(const QString& value)
{
    if constexpr (std::is_same_v<T, bool>) {
        if (value == QLatin1String("true") || value == QLatin1String("false")) {
            return value == QLatin1String("true");
        }
        return std::nullopt;
    } else if constexpr (std::is_same_v<T, int>) {
        bool ok = false;
        const int number = value.trimmed().toInt(&ok);
        return ok ? std::optional(number) : std::nullopt;
    } else if constexpr (std::is_same_v<T, QString>) {
        return value;
    } else if constexpr (std::is_same_v<T, QStringList>) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(value.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError || !document.isArray()) {
            return std::nullopt;
        }
        QStringList list;
        for (const QJsonValue& element : document.array()) {
            if (!element.isString()) {
                return std::nullopt;
            }
            list.append(element.toString());
        }
        return list;
    } else {
        return std::nullopt;
    }
}

const PreferenceDefinition* definition(const QString& name)
{
    return PreferenceDefinition::find(name);
}

Error unknown(const QString& name)
{
    return {
        Error::Kind::invalidArguments,
        QStringLiteral("no setting is called \"%1\"; the names are those of the preferences file").arg(name)};
}

} // namespace

SettingsService::SettingsService(Preferences& preferences)
    : m_preferences(preferences)
{}

std::expected<QString, Error> SettingsService::setting(const QString& name) const
{
    const PreferenceDefinition* found = definition(name);
    if (!found) {
        return std::unexpected(unknown(name));
    }
    return visitPreferenceKey(found->key, [this](auto key) -> QString {
        using T = typename std::remove_cvref_t<decltype(key)>::ValueType;
        if constexpr (std::default_initializable<T>) {
            return text(m_preferences.value(key));
        } else {
            return {};
        }
    });
}

std::expected<QString, Error> SettingsService::setSetting(const QString& name, const QString& value)
{
    const PreferenceDefinition* found = definition(name);
    if (!found) {
        return std::unexpected(unknown(name));
    }
    if (found->isInternal()) {
        return std::unexpected(
            Error{Error::Kind::invalidArguments,
                  QStringLiteral("\"%1\" is kept by Vantrope itself and cannot be set").arg(name)});
    }
    const bool stored = visitPreferenceKey(found->key, [this, &value](auto key) -> bool {
        using T = typename std::remove_cvref_t<decltype(key)>::ValueType;
        const std::optional<T> parsed = parse<T>(value);
        if (!parsed) {
            return false;
        }
        m_preferences.setValue(key, *parsed);
        return true;
    });
    if (!stored) {
        const bool settable =
            found->type == PreferenceValueType::Bool || found->type == PreferenceValueType::Int ||
            found->type == PreferenceValueType::String || found->type == PreferenceValueType::StringList;
        return std::unexpected(Error{
            Error::Kind::invalidArguments,
            settable ? QStringLiteral("\"%1\" takes %2, not \"%3\"").arg(name, typeName(found->type), value)
                     : QStringLiteral("\"%1\" takes %2, which the command line cannot set")
                           .arg(name, typeName(found->type))});
    }
    return setting(name);
}

} // namespace Vantrope
