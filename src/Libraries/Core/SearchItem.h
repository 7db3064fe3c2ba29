// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Vantrope {

// One entry of a type-to-search list: what runs is found again by its identifier.
struct SearchItem {
    QString identifier;
    QString title;
    QString imageName;
    QStringList keywords;

    friend bool operator==(const SearchItem&, const SearchItem&) = default;
};

// A titled group of items shown before anything is typed.
struct SearchSection {
    QString identifier; // the title's key, "search.recent-items" or "search.suggested-items"
    QString title;
    QList<SearchItem> items;

    friend bool operator==(const SearchSection&, const SearchSection&) = default;
};

} // namespace Vantrope
