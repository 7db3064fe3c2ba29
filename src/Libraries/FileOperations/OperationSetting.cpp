// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "OperationSetting.h"

#include "Libraries/Core/Localized.h"

#include <algorithm>

namespace Vantrope {

namespace {

QString typeName(const OperationSetting& setting)
{
    switch (setting.type) {
    case OperationSetting::Type::integer:
        return Localized("operation-setting.type.integer", "a whole number from %1 to %2")
            .arg(setting.minimum)
            .arg(setting.maximum);
    case OperationSetting::Type::choice: {
        QStringList values;
        for (const auto& choice : setting.choices)
            values << choice.value;
        return Localized("operation-setting.type.choice", "one of %1").arg(values.join(QStringLiteral(", ")));
    }
    case OperationSetting::Type::boolean:
        return Localized("operation-setting.type.boolean", "true or false");
    case OperationSetting::Type::text:
    case OperationSetting::Type::folder:
        return Localized("operation-setting.type.text", "text");
    }
    return {};
}

std::expected<QVariant, OperationSettingError::Kind> convert(const OperationSetting& setting,
                                                             const QVariant& value)
{
    switch (setting.type) {
    case OperationSetting::Type::integer: {
        bool ok = false;
        qlonglong number = 0;
        if (value.typeId() == QMetaType::QString)
            number = value.toString().trimmed().toLongLong(&ok);
        else if (value.typeId() == QMetaType::Double) {
            const double d = value.toDouble();
            ok = d == double(qlonglong(d));
            number = qlonglong(d);
        } else if (value.canConvert<qlonglong>() && value.typeId() != QMetaType::Bool)
            number = value.toLongLong(&ok);
        if (!ok)
            return std::unexpected(OperationSettingError::Kind::wrongType);
        if (number < setting.minimum || number > setting.maximum)
            return std::unexpected(OperationSettingError::Kind::outOfRange);
        return QVariant(int(number));
    }
    case OperationSetting::Type::choice: {
        if (value.typeId() != QMetaType::QString)
            return std::unexpected(OperationSettingError::Kind::wrongType);
        const QString text = value.toString();
        for (const auto& choice : setting.choices) {
            if (choice.value == text)
                return QVariant(text);
        }
        return std::unexpected(OperationSettingError::Kind::unknownChoice);
    }
    case OperationSetting::Type::boolean: {
        if (value.typeId() == QMetaType::Bool)
            return value;
        if (value.typeId() == QMetaType::QString) {
            const QString text = value.toString().trimmed().toLower();
            if (text == QLatin1String("true") || text == QLatin1String("yes") || text == QLatin1String("1"))
                return QVariant(true);
            if (text == QLatin1String("false") || text == QLatin1String("no") || text == QLatin1String("0"))
                return QVariant(false);
        }
        return std::unexpected(OperationSettingError::Kind::wrongType);
    }
    case OperationSetting::Type::text:
    case OperationSetting::Type::folder: {
        if (value.typeId() != QMetaType::QString)
            return std::unexpected(OperationSettingError::Kind::wrongType);
        if (setting.type == OperationSetting::Type::folder && value.toString().isEmpty())
            return std::unexpected(OperationSettingError::Kind::empty);
        return value;
    }
    }
    return std::unexpected(OperationSettingError::Kind::wrongType);
}

} // namespace

QString OperationSettingError::description() const
{
    switch (kind) {
    case Kind::unknownKey:
        return Localized("operation-setting.error.unknown", "There is no setting named “%1”.").arg(key);
    case Kind::wrongType:
    case Kind::outOfRange:
    case Kind::unknownChoice:
        return Localized("operation-setting.error.value", "The setting “%1” takes %2.").arg(key, expected);
    case Kind::empty:
        return Localized("operation-setting.error.empty", "The setting “%1” needs a value.").arg(key);
    }
    return {};
}

std::expected<QVariantMap, OperationSettingError> resolveOperationSettings(const OperationSettings& settings,
                                                                           const QVariantMap& values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        const bool known =
            std::any_of(settings.cbegin(), settings.cend(),
                        [&](const OperationSetting& setting) { return setting.key == it.key(); });
        if (!known)
            return std::unexpected(
                OperationSettingError{OperationSettingError::Kind::unknownKey, it.key(), {}});
    }
    QVariantMap resolved;
    for (const auto& setting : settings) {
        const auto given = values.constFind(setting.key);
        const QVariant value = given != values.cend() ? *given : setting.defaultValue;
        auto converted = convert(setting, value);
        if (!converted)
            return std::unexpected(OperationSettingError{converted.error(), setting.key, typeName(setting)});
        resolved.insert(setting.key, *converted);
    }
    return resolved;
}

} // namespace Vantrope
