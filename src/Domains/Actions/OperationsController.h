// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

namespace Vantrope {

// The file operations offered beside the actions (convert, rename by pattern, user scripts...). The
// operations library supplies the real one; a shelf without it has no operations group.
class OperationsController {
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

    virtual ~OperationsController() = default;

    // The files to work on.
    virtual void setItems(const QList<QUrl>& urls) = 0;
    virtual QList<MenuItem> menuItems() const = 0;
    virtual QList<SearchElement> searchElements() const = 0;
    // Both answer whether the operation started.
    virtual bool performMenuItem(const QString& identifier) = 0;
    virtual bool performSearchElement(const SearchElement& element) = 0;
    virtual void cancel() = 0;
};

} // namespace Vantrope
