// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "SearchItem.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace Vantrope {

// Finds search items by what is typed. Every typed word must begin some word of the item's title or
// keywords, ignoring case and accents, so "comp" finds "Compress" and "zip fi" finds "Zip Files".
// Items whose title holds every typed word come before those that needed a keyword, then those whose
// match starts at an earlier word; otherwise the given order stands. The words of every item are
// folded once, when the items are set, so a filter does no more than compare prefixes.
class SearchMatcher final {
public:
    SearchMatcher() = default;
    explicit SearchMatcher(QList<SearchItem> items);

    void setItems(QList<SearchItem> items);
    const QList<SearchItem>& items() const { return m_items; }

    // Positions in items(), best first. A query without words keeps every item in the given order.
    QList<qsizetype> matchingIndices(QStringView query) const;
    QList<SearchItem> filter(QStringView query) const;

    // What shows before anything is typed: the items named in `recentIdentifiers` (most recent first)
    // in that order, under "search.recent-items"; when none of them is on offer, the items named in
    // `suggestedIdentifiers` under "search.suggested-items". Empty when neither finds an item.
    QList<SearchSection> suggestion(const QStringList& recentIdentifiers,
                                    const QStringList& suggestedIdentifiers) const;

    // Lower case without accents or compatibility forms ("FIlé" → "file").
    static QString fold(QStringView text);
    // The folded words of a text: runs of letters and digits, apostrophes dropped ("Don't" → "dont").
    static QStringList foldedWords(QStringView text);

private:
    struct FoldedItem {
        QStringList titleWords;
        QStringList keywordWords;
    };

    QList<SearchItem> m_items;
    std::vector<FoldedItem> m_folded;
};

} // namespace Vantrope
