// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SearchMatcher.h"

#include "Localized.h"

#include <algorithm>
#include <limits>
#include <QHash>

namespace Vantrope {

namespace {

constexpr qsizetype noPosition = std::numeric_limits<qsizetype>::max();

bool isApostrophe(QChar character)
{
    return character == u'\'' || character == QChar(0x2019);
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
}

// The first word of `words` that `prefix` begins, or noPosition.
qsizetype firstWordWithPrefix(const QStringList& words, const QString& prefix)
{
    for (qsizetype index = 0; index < words.size(); ++index) {
        if (words[index].startsWith(prefix)) {
            return index;
        }
    }
    return noPosition;
}

} // namespace

SearchMatcher::SearchMatcher(QList<SearchItem> items)
{
    setItems(std::move(items));
}

void SearchMatcher::setItems(QList<SearchItem> items)
{
    m_items = std::move(items);
    m_folded.clear();
    m_folded.reserve(size_t(m_items.size()));
    for (const SearchItem& item : std::as_const(m_items)) {
        FoldedItem folded{foldedWords(item.title), {}};
        for (const QString& keyword : item.keywords) {
            folded.keywordWords += foldedWords(keyword);
        }
        m_folded.push_back(std::move(folded));
    }
}

QString SearchMatcher::fold(QStringView text)
{
    if (isAscii(text)) {
        return text.toString().toLower();
    }
    // Compatibility decomposition also splits ligatures and full-width forms into plain letters.
    const QString decomposed = text.toString().normalized(QString::NormalizationForm_KD);
    QString result;
    result.reserve(decomposed.size());
    for (const QChar character : decomposed) {
        const QChar::Category category = character.category();
        if (category != QChar::Mark_NonSpacing && category != QChar::Mark_SpacingCombining &&
            category != QChar::Mark_Enclosing) {
            result.append(character);
        }
    }
    return result.toCaseFolded();
}

QStringList SearchMatcher::foldedWords(QStringView text)
{
    const QString folded = fold(text);
    QStringList words;
    QString word;
    for (qsizetype index = 0; index < folded.size(); ++index) {
        const QChar character = folded[index];
        if (character.isLetterOrNumber()) {
            word.append(character);
        } else if (character.isLowSurrogate() || character.isHighSurrogate()) {
            // Letters beyond the basic plane come as pairs; keep the pair together.
            word.append(character);
        } else if (isApostrophe(character) && !word.isEmpty()) {
            continue;
        } else if (!word.isEmpty()) {
            words.append(word);
            word.clear();
        }
    }
    if (!word.isEmpty()) {
        words.append(word);
    }
    return words;
}

QList<qsizetype> SearchMatcher::matchingIndices(QStringView query) const
{
    const QStringList queryWords = foldedWords(query);
    QList<qsizetype> result;
    if (queryWords.isEmpty()) {
        result.reserve(m_items.size());
        for (qsizetype index = 0; index < m_items.size(); ++index) {
            result.append(index);
        }
        return result;
    }

    struct Match {
        bool titleOnly;
        qsizetype position;
        qsizetype index;
    };
    std::vector<Match> matches;
    for (qsizetype index = 0; index < m_items.size(); ++index) {
        const FoldedItem& item = m_folded[size_t(index)];
        bool matched = true;
        bool titleOnly = true;
        qsizetype titlePosition = noPosition;
        qsizetype keywordPosition = noPosition;
        for (const QString& word : queryWords) {
            const qsizetype inTitle = firstWordWithPrefix(item.titleWords, word);
            if (inTitle != noPosition) {
                titlePosition = std::min(titlePosition, inTitle);
                continue;
            }
            const qsizetype inKeywords = firstWordWithPrefix(item.keywordWords, word);
            if (inKeywords == noPosition) {
                matched = false;
                break;
            }
            titleOnly = false;
            keywordPosition = std::min(keywordPosition, inKeywords);
        }
        if (matched) {
            matches.push_back({titleOnly, titleOnly ? titlePosition : keywordPosition, index});
        }
    }
    std::stable_sort(matches.begin(), matches.end(), [](const Match& left, const Match& right) {
        if (left.titleOnly != right.titleOnly) {
            return left.titleOnly;
        }
        return left.position < right.position;
    });
    result.reserve(qsizetype(matches.size()));
    for (const Match& match : matches) {
        result.append(match.index);
    }
    return result;
}

QList<SearchItem> SearchMatcher::filter(QStringView query) const
{
    QList<SearchItem> result;
    const QList<qsizetype> indices = matchingIndices(query);
    result.reserve(indices.size());
    for (const qsizetype index : indices) {
        result.append(m_items[index]);
    }
    return result;
}

QList<SearchSection> SearchMatcher::suggestion(const QStringList& recentIdentifiers,
                                               const QStringList& suggestedIdentifiers) const
{
    QHash<QString, qsizetype> byIdentifier;
    for (qsizetype index = m_items.size() - 1; index >= 0; --index) {
        byIdentifier.insert(m_items[index].identifier, index); // the first of equal identifiers wins
    }
    const auto itemsNamed = [&](const QStringList& identifiers) {
        QList<SearchItem> items;
        QList<qsizetype> taken;
        for (const QString& identifier : identifiers) {
            const auto found = byIdentifier.constFind(identifier);
            if (found != byIdentifier.constEnd() && !taken.contains(*found)) {
                taken.append(*found);
                items.append(m_items[*found]);
            }
        }
        return items;
    };

    if (QList<SearchItem> recent = itemsNamed(recentIdentifiers); !recent.isEmpty()) {
        return {SearchSection{QStringLiteral("search.recent-items"),
                              Localized("search.recent-items", "Recent"), std::move(recent)}};
    }
    if (QList<SearchItem> suggested = itemsNamed(suggestedIdentifiers); !suggested.isEmpty()) {
        return {SearchSection{QStringLiteral("search.suggested-items"),
                              Localized("search.suggested-items", "Suggestions"), std::move(suggested)}};
    }
    return {};
}

} // namespace Vantrope
