// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationSetting.h"

#include <expected>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

// The file operations offered beside the actions (convert, rename by pattern, user scripts...), as the
// menu and the search see them. `FileOperationsProvider` is the real one, over the operations library's
// controller; a shelf without one has no operations group.
class OperationsProvider {
public:
    struct MenuItem {
        QString identifier;
        QString title;
        QString iconName;
        bool operator==(const MenuItem&) const = default;
    };

    // What the search offers of the operations, in the order built-in types, user operations,
    // application scripts; types that must not be searched are already left out.
    struct SearchElement {
        enum class Kind { operationType, userOperation, applicationScript };
        Kind kind = Kind::operationType;
        QString identifier;
        QString title;
        QString iconName;
        QStringList keywords;
        bool operator==(const SearchElement&) const = default;
    };

    virtual ~OperationsProvider() = default;

    // The files to work on.
    virtual void setItems(const QList<QUrl>& urls) = 0;
    virtual QList<MenuItem> menuItems() const = 0;
    virtual QList<SearchElement> searchElements() const = 0;
    // Both answer whether the operation started.
    virtual bool performMenuItem(const QString& identifier) = 0;
    virtual bool performSearchElement(const SearchElement& element) = 0;
    virtual void cancel() = 0;

    // For the command line: the values the operation behind a menu or search identifier takes, and a
    // run with such values that asks nothing. The run's end reaches the shelf like any other run's.
    virtual OperationSettings settings(const QString& identifier) const
    {
        Q_UNUSED(identifier);
        return {};
    }
    virtual std::expected<void, QString> performWithValues(const QString& identifier,
                                                           const QVariantMap& values)
    {
        Q_UNUSED(values);
        return performMenuItem(identifier)
                   ? std::expected<void, QString>()
                   : std::unexpected(QStringLiteral("\"%1\" did not start").arg(identifier));
    }
};

} // namespace Vantrope
