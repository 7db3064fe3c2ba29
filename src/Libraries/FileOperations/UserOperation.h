// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "FileOperationType.h"

#include <expected>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>
#include <QVariantMap>

namespace Vantrope {

// An operation the user put together: either a chain of built-in operations with their values ("resize
// to 1600 px, then JPEG at 80 %, then strip metadata"), each step working on what the one before
// produced, or a command line of their own with %f/%F for the files (see `CommandTemplate`).
struct UserOperation {
    struct Step {
        FileOperationType type = FileOperationType::zip;
        QVariantMap values;
        bool operator==(const Step&) const = default;
    };
    enum class Kind { chain, command };

    QUuid identifier;
    QString name;
    Kind kind = Kind::chain;
    QList<Step> steps;
    QString command;
    // Empty takes the icon of the first step, or a generic one for a command.
    QString iconName;

    QString effectiveIconName() const;
    // "userOperation_" and the identifier, as instant actions and search name it.
    QString searchIdentifier() const;

    QJsonObject toJson() const;
    static std::expected<UserOperation, QString> fromJson(const QJsonObject& object);

    bool operator==(const UserOperation&) const = default;
};

} // namespace Vantrope
