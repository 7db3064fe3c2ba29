// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "UserOperation.h"

#include "Libraries/Core/Localized.h"

#include <QJsonArray>

namespace Vantrope {

QString UserOperation::effectiveIconName() const
{
    if (!iconName.isEmpty()) {
        return iconName;
    }
    if (kind == Kind::chain && !steps.isEmpty()) {
        return steps.first().type.iconName();
    }
    return QStringLiteral("system-run");
}

QString UserOperation::searchIdentifier() const
{
    return QStringLiteral("userOperation_") + identifier.toString(QUuid::WithoutBraces);
}

QJsonObject UserOperation::toJson() const
{
    QJsonObject object{
        {QStringLiteral("identifier"), identifier.toString(QUuid::WithoutBraces)},
        {QStringLiteral("name"), name},
        {QStringLiteral("kind"), kind == Kind::chain ? QStringLiteral("chain") : QStringLiteral("command")}};
    if (!iconName.isEmpty()) {
        object.insert(QStringLiteral("icon"), iconName);
    }
    if (kind == Kind::chain) {
        QJsonArray array;
        for (const Step& step : steps) {
            array.append(QJsonObject{{QStringLiteral("operation"), step.type.identifier()},
                                     {QStringLiteral("values"), QJsonObject::fromVariantMap(step.values)}});
        }
        object.insert(QStringLiteral("steps"), array);
    } else {
        object.insert(QStringLiteral("command"), command);
    }
    return object;
}

std::expected<UserOperation, QString> UserOperation::fromJson(const QJsonObject& object)
{
    UserOperation operation;
    operation.identifier = QUuid::fromString(object.value(QStringLiteral("identifier")).toString());
    if (operation.identifier.isNull()) {
        return std::unexpected(
            Localized("user-operation.error.identifier", "An operation has no valid identifier."));
    }
    operation.name = object.value(QStringLiteral("name")).toString().trimmed();
    if (operation.name.isEmpty()) {
        return std::unexpected(Localized("user-operation.error.name", "An operation has no name."));
    }
    operation.iconName = object.value(QStringLiteral("icon")).toString();
    const QString kind = object.value(QStringLiteral("kind")).toString();
    if (kind == QLatin1String("command")) {
        operation.kind = Kind::command;
        operation.command = object.value(QStringLiteral("command")).toString();
        if (operation.command.trimmed().isEmpty()) {
            return std::unexpected(
                Localized("user-operation.error.command", "The operation \"%1\" has no command.")
                    .arg(operation.name));
        }
        return operation;
    }
    if (kind != QLatin1String("chain")) {
        return std::unexpected(
            Localized("user-operation.error.kind", "The operation \"%1\" is of an unknown kind.")
                .arg(operation.name));
    }
    for (const QJsonValue& value : object.value(QStringLiteral("steps")).toArray()) {
        const QJsonObject step = value.toObject();
        const auto type =
            FileOperationType::fromIdentifier(step.value(QStringLiteral("operation")).toString());
        if (!type) {
            return std::unexpected(
                Localized("user-operation.error.step", "The operation \"%1\" has an unknown step \"%2\".")
                    .arg(operation.name, step.value(QStringLiteral("operation")).toString()));
        }
        operation.steps.append({*type, step.value(QStringLiteral("values")).toObject().toVariantMap()});
    }
    if (operation.steps.isEmpty()) {
        return std::unexpected(
            Localized("user-operation.error.no-steps", "The operation \"%1\" has no steps.")
                .arg(operation.name));
    }
    return operation;
}

} // namespace Vantrope
