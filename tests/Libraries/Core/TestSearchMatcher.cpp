// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/Core/SearchMatcher.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

namespace {

// "identifier=Title|keyword one,keyword two"
QList<SearchItem> itemsFrom(const QStringList& descriptions)
{
    QList<SearchItem> items;
    for (const QString& description : descriptions) {
        const qsizetype equals = description.indexOf(u'=');
        const QStringList parts = description.mid(equals + 1).split(u'|');
        items.append(SearchItem{description.left(equals), parts[0], u"icon-"_s + description.left(equals),
                                parts.size() > 1 ? parts[1].split(u',', Qt::SkipEmptyParts) : QStringList{}});
    }
    return items;
}

QStringList identifiersOf(const QList<SearchItem>& items)
{
    QStringList identifiers;
    for (const SearchItem& item : items) {
        identifiers << item.identifier;
    }
    return identifiers;
}

} // namespace

class TestSearchMatcher final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }
    void filter_data();
    void filter();
    void ranking_data();
    void ranking();
    void foldedWords_data();
    void foldedWords();
    void suggestion_data();
    void suggestion();
    void newItemsReplaceTheOldWords();
};

void TestSearchMatcher::filter_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("expected");

    const QStringList actions{u"zip=Zip Files|archive,compress"_s,
                              u"folder=Zip Folder"_s,
                              u"copy=Copy to Clipboard…|pasteboard,copy"_s,
                              u"trash=Move to Trash|delete,remove"_s,
                              u"resume=Résumé Builder"_s,
                              u"cafe=Cafe Menu"_s,
                              u"ete=ÉTÉ Photos"_s};

    QTest::newRow("prefix of a title word") << actions << u"comp"_s << QStringList{u"zip"_s};
    QTest::newRow("inside a word is no match") << actions << u"ipboard"_s << QStringList{};
    QTest::newRow("longer than the word") << actions << u"zipped"_s << QStringList{};
    QTest::newRow("case is ignored") << actions << u"ZIP fILES"_s << QStringList{u"zip"_s};
    QTest::newRow("accents in the title are ignored") << actions << u"resume"_s << QStringList{u"resume"_s};
    QTest::newRow("accents in the query are ignored") << actions << u"café"_s << QStringList{u"cafe"_s};
    QTest::newRow("accented capitals") << actions << u"été"_s << QStringList{u"ete"_s};
    QTest::newRow("accent typed as a combining mark")
        << actions << u"re\u0301su"_s << QStringList{u"resume"_s};
    QTest::newRow("every typed word must match") << actions << u"zip fi"_s << QStringList{u"zip"_s};
    QTest::newRow("typed words in any order") << actions << u"fi zip"_s << QStringList{u"zip"_s};
    QTest::newRow("one word unmatched") << actions << u"zip nothing"_s << QStringList{};
    QTest::newRow("keyword") << actions << u"archive"_s << QStringList{u"zip"_s};
    QTest::newRow("title and keyword together") << actions << u"trash rem"_s << QStringList{u"trash"_s};
    QTest::newRow("ellipsis and punctuation split words")
        << actions << u"clipboard"_s << QStringList{u"copy"_s};
    QTest::newRow("separators in the query") << actions << u"  zip,   files!"_s << QStringList{u"zip"_s};
    QTest::newRow("blank query keeps everything in order")
        << QStringList{u"b=Beta"_s, u"a=Alpha"_s} << u"  "_s << QStringList{u"b"_s, u"a"_s};
    QTest::newRow("ligature") << QStringList{u"file=File Info"_s} << u"\uFB01le"_s << QStringList{u"file"_s};
    QTest::newRow("apostrophe inside a word")
        << QStringList{u"keep=Don’t Keep"_s, u"other=Do Not"_s} << u"dont"_s << QStringList{u"keep"_s};
    QTest::newRow("numbers are words")
        << QStringList{u"s3=Copy S3 Link"_s, u"x=Copy Link"_s} << u"s3"_s << QStringList{u"s3"_s};
    QTest::newRow("non-Latin scripts")
        << QStringList{u"ru=Сжать файлы"_s, u"de=Dateien packen"_s} << u"ФАЙ"_s << QStringList{u"ru"_s};
}

void TestSearchMatcher::filter()
{
    QFETCH(QStringList, items);
    QFETCH(QString, query);
    QFETCH(QStringList, expected);

    const SearchMatcher matcher(itemsFrom(items));
    QCOMPARE(identifiersOf(matcher.filter(query)), expected);
}

void TestSearchMatcher::ranking_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("title before keyword")
        << QStringList{u"paste=Paste|copy"_s, u"path=Copy Path"_s, u"link=Share Link|copy,url"_s} << u"copy"_s
        << QStringList{u"path"_s, u"paste"_s, u"link"_s};
    QTest::newRow("title before keyword even when the keyword is earlier")
        << QStringList{u"k=Alpha|zip"_s, u"t=Make Zip"_s} << u"zip"_s << QStringList{u"t"_s, u"k"_s};
    QTest::newRow("a word found only in keywords makes it a keyword match")
        << QStringList{u"both=Zip Files|archive"_s, u"title=Zip Archive"_s} << u"zip arch"_s
        << QStringList{u"title"_s, u"both"_s};
    QTest::newRow("earlier title word first")
        << QStringList{u"zip=Zip Files"_s, u"pdf=Files to PDF"_s, u"three=Copy All Files"_s} << u"fi"_s
        << QStringList{u"pdf"_s, u"zip"_s, u"three"_s};
    // By the first typed word "late" would lead (word 1 against word 2).
    QTest::newRow("earliest of several typed words counts")
        << QStringList{u"late=Alpha Files Beta"_s, u"early=Beta Alpha Files"_s} << u"fi be"_s
        << QStringList{u"early"_s, u"late"_s};
    QTest::newRow("earlier keyword first among keyword matches")
        << QStringList{u"late=One|alpha,beta,zip"_s, u"early=Two|zip,alpha"_s} << u"zip"_s
        << QStringList{u"early"_s, u"late"_s};
    QTest::newRow("ties keep the given order")
        << QStringList{u"c=Compress Images"_s, u"a=Compress"_s, u"b=Compress Files"_s} << u"com"_s
        << QStringList{u"c"_s, u"a"_s, u"b"_s};
    QTest::newRow("keyword ties keep the given order")
        << QStringList{u"y=Y|archive"_s, u"x=X|archive"_s} << u"arch"_s << QStringList{u"y"_s, u"x"_s};
}

void TestSearchMatcher::ranking()
{
    QFETCH(QStringList, items);
    QFETCH(QString, query);
    QFETCH(QStringList, expected);

    const SearchMatcher matcher(itemsFrom(items));
    QCOMPARE(identifiersOf(matcher.filter(query)), expected);
}

void TestSearchMatcher::foldedWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("ascii") << u"Copy To…"_s << QStringList{u"copy"_s, u"to"_s};
    QTest::newRow("accents") << u"Crème Brûlée"_s << QStringList{u"creme"_s, u"brulee"_s};
    QTest::newRow("hyphen") << u"Re-size"_s << QStringList{u"re"_s, u"size"_s};
    QTest::newRow("leading apostrophe separates") << u"'quoted'"_s << QStringList{u"quoted"_s};
    QTest::newRow("full width") << u"ＺＩＰ"_s << QStringList{u"zip"_s};
    QTest::newRow("nothing") << u" … "_s << QStringList{};
}

void TestSearchMatcher::foldedWords()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    QCOMPARE(SearchMatcher::foldedWords(text), expected);
}

void TestSearchMatcher::suggestion_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QStringList>("recent");
    QTest::addColumn<QStringList>("suggested");
    QTest::addColumn<QString>("section"); // empty for none
    QTest::addColumn<QStringList>("expected");

    const QStringList items{u"open=Open"_s, u"mail=Mail"_s, u"zip=Zip"_s, u"copy=Copy"_s, u"trash=Trash"_s};
    const QStringList suggested{u"mail"_s, u"airdrop"_s, u"open"_s, u"copy"_s};

    QTest::newRow("recent in the history's order")
        << items << QStringList{u"trash"_s, u"zip"_s} << suggested << u"search.recent-items"_s
        << QStringList{u"trash"_s, u"zip"_s};
    QTest::newRow("recent not on offer are skipped") << items << QStringList{u"gone"_s, u"zip"_s} << suggested
                                                     << u"search.recent-items"_s << QStringList{u"zip"_s};
    QTest::newRow("a repeated identifier once")
        << items << QStringList{u"zip"_s, u"open"_s, u"zip"_s} << suggested << u"search.recent-items"_s
        << QStringList{u"zip"_s, u"open"_s};
    QTest::newRow("no history: suggestions on offer, in their order")
        << items << QStringList{} << suggested << u"search.suggested-items"_s
        << QStringList{u"mail"_s, u"open"_s, u"copy"_s};
    QTest::newRow("history of nothing on offer: suggestions")
        << items << QStringList{u"gone"_s} << suggested << u"search.suggested-items"_s
        << QStringList{u"mail"_s, u"open"_s, u"copy"_s};
    QTest::newRow("nothing at all") << items << QStringList{u"gone"_s} << QStringList{u"airdrop"_s}
                                    << QString() << QStringList{};
}

void TestSearchMatcher::suggestion()
{
    QFETCH(QStringList, items);
    QFETCH(QStringList, recent);
    QFETCH(QStringList, suggested);
    QFETCH(QString, section);
    QFETCH(QStringList, expected);

    const SearchMatcher matcher(itemsFrom(items));
    const QList<SearchSection> sections = matcher.suggestion(recent, suggested);
    if (section.isEmpty()) {
        QVERIFY(sections.isEmpty());
        return;
    }
    QCOMPARE(sections.size(), 1);
    QCOMPARE(sections[0].identifier, section);
    QVERIFY(!sections[0].title.isEmpty());
    QCOMPARE(identifiersOf(sections[0].items), expected);
    // Whole items come back, image and keywords included.
    const QList<SearchItem> all = itemsFrom(items);
    for (const SearchItem& item : sections[0].items) {
        QVERIFY(all.contains(item));
    }
}

void TestSearchMatcher::newItemsReplaceTheOldWords()
{
    SearchMatcher matcher(itemsFrom({u"a=Compress"_s, u"b=Rename"_s}));
    QCOMPARE(identifiersOf(matcher.filter(u"comp")), QStringList{u"a"_s});
    matcher.setItems(itemsFrom({u"c=Copy Path|compose"_s}));
    QCOMPARE(identifiersOf(matcher.filter(u"comp")), QStringList{u"c"_s});
    QCOMPARE(identifiersOf(matcher.filter(u"ren")), QStringList{});
}

QTEST_GUILESS_MAIN(TestSearchMatcher)
#include "TestSearchMatcher.moc"
