// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DirectoryObserver/DirectoryObserverFilter.h"
#include "Domains/DirectoryObserver/SizeItemMatcherInput.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

using Matcher = DirectoryObserverItemMatcher;
using Filter = DirectoryObserverFilter;
using Text = Matcher::StringMatching::Comparison;
using Size = Matcher::SizeMatching::Comparison;
using KindTest = Matcher::KindMatching::Comparison;
using Kind = Matcher::KindMatching::Kind;
using Unit = SizeItemMatcherInput::Unit;

Q_DECLARE_METATYPE(Vantrope::DirectoryObserverItemMatcher)
Q_DECLARE_METATYPE(Vantrope::SizeItemMatcherInput::Unit)

namespace {

Matcher name(Text comparison, const QString& pattern)
{
    return Matcher::fileName({comparison, pattern});
}

// "&a |b": an `And` rule that the name contains "a", then an `Or` rule that it contains "b".
QList<Filter> rules(const QString& written)
{
    QList<Filter> filters;
    for (const QString& rule : written.split(u' ', Qt::SkipEmptyParts)) {
        filters.append({rule.startsWith(u'&') ? Filter::OperatorType::And : Filter::OperatorType::Or,
                        name(Text::contains, rule.mid(1))});
    }
    return filters;
}

// Names, extensions and sizes are not read from the disk, so the item need not exist.
DirectoryObserverItem item(const QString& fileName, quint64 size = 1)
{
    return {QUrl::fromLocalFile(u"/nonexistent/"_s + fileName), fileName, {}, size, 0, false};
}

} // namespace

class TestDirectoryObserverFilter final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void evaluate_data()
    {
        QTest::addColumn<QString>("filters");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<bool>("expected");
        QTest::newRow("no rules") << QString() << u"anything"_s << true;
        QTest::newRow("and a, or b: b") << u"&a |b"_s << u"b"_s << false;
        QTest::newRow("and a, or b: a") << u"&a |b"_s << u"a"_s << true;
        QTest::newRow("and a, or b: ab") << u"&a |b"_s << u"ab"_s << true;
        QTest::newRow("or a, and b: a") << u"|a &b"_s << u"a"_s << false;
        QTest::newRow("or a, and b: b") << u"|a &b"_s << u"b"_s << true;
        QTest::newRow("or a, or b: c") << u"|a |b"_s << u"c"_s << false;
        QTest::newRow("or a, or b: b") << u"|a |b"_s << u"b"_s << true;
        QTest::newRow("and a, and b: a") << u"&a &b"_s << u"a"_s << false;
        QTest::newRow("and a, and b: ba") << u"&a &b"_s << u"ba"_s << true;
        QTest::newRow("a single or is mandatory") << u"|a"_s << u"b"_s << false;
    }

    void evaluate()
    {
        QFETCH(QString, filters);
        QFETCH(QString, fileName);
        QFETCH(bool, expected);
        QCOMPARE(Filter::evaluate(item(fileName), false, rules(filters)), expected);
    }

    void matcher_data()
    {
        QTest::addColumn<Matcher>("matcher");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<bool>("expected");
        const auto extension = [](Text test, const QString& pattern) {
            return Matcher::fileExtension({test, pattern});
        };
        const auto kind = [](KindTest test, Kind kind) { return Matcher::kind({test, kind}); };

        QTest::newRow("case ignored") << name(Text::endsWith, u".PDF"_s) << u"a.pdf"_s << false << true;
        QTest::newRow("case minded") << name(Text::endsWith, u".PDF"_s) << u"a.pdf"_s << true << false;
        QTest::newRow("startsWith") << name(Text::startsWith, u"scan"_s) << u"Scan 1.png"_s << false << true;
        QTest::newRow("doesNotContain")
            << name(Text::doesNotContain, u"draft"_s) << u"a.doc"_s << false << true;
        QTest::newRow("doesNotEqual") << name(Text::doesNotEqual, u"A.txt"_s) << u"a.txt"_s << false << false;
        QTest::newRow("last extension")
            << extension(Text::equals, u"pdf"_s) << u"a.pdf.gz"_s << false << false;
        QTest::newRow("dot file") << extension(Text::equals, u"pdf"_s) << u".pdf"_s << false << false;
        QTest::newRow("not image, no extension")
            << kind(KindTest::doesNotEqual, Kind::image) << u"README"_s << false << true;
        QTest::newRow("image, no extension")
            << kind(KindTest::equals, Kind::image) << u"README"_s << false << false;
        QTest::newRow("kind ignores the flag")
            << kind(KindTest::equals, Kind::image) << u"a.JPG"_s << true << true;
        QTest::newRow("gz is no archive")
            << kind(KindTest::equals, Kind::archive) << u"a.gz"_s << false << false;
        QTest::newRow("csv is text") << kind(KindTest::equals, Kind::text) << u"a.csv"_s << false << true;
        QTest::newRow("greaterThan is strict")
            << Matcher::fileSize({Size::greaterThan, 1}) << u"a"_s << false << false;
        QTest::newRow("lessThan") << Matcher::fileSize({Size::lessThan, 2}) << u"a"_s << false << true;
        QTest::newRow("csv is a document")
            << kind(KindTest::equals, Kind::document) << u"a.csv"_s << false << true;
    }

    void matcher()
    {
        QFETCH(Matcher, matcher);
        QFETCH(QString, fileName);
        QFETCH(bool, caseSensitive);
        QFETCH(bool, expected);
        QCOMPARE(matcher.matches(item(fileName), caseSensitive), expected);
    }

    void folderAndTypeReadTheDisk()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"folder.png"_s);
        const QString picture = dir.filePath(u"picture"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(Test::writeFile(picture, QByteArray::fromHex("89504e470d0a1a0a0000000d49484452")));
        const auto onDisk = [](const QString& path) {
            return DirectoryObserverItem::fromUrl(QUrl::fromLocalFile(path));
        };

        // Both comparisons select the folders.
        for (KindTest test : {KindTest::equals, KindTest::doesNotEqual}) {
            QVERIFY(Matcher::kind({test, Kind::folder}).matches(onDisk(folder), false));
            QVERIFY(!Matcher::kind({test, Kind::folder}).matches(onDisk(picture), false));
        }
        // The type comes from the content where the name says nothing, and is empty for what is gone.
        QVERIFY(Matcher::fileType({Text::startsWith, u"image/"_s}).matches(onDisk(picture), false));
        QVERIFY(
            Matcher::fileType({Text::equals, QString()}).matches(onDisk(dir.filePath(u"gone.png"_s)), false));
    }

    void decode_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("decodes");
        QTest::addColumn<Matcher>("expected");
        const auto row = [](const char* tag, const char* json, std::optional<Matcher> expected) {
            QTest::newRow(tag) << QByteArray(json) << expected.has_value() << expected.value_or(Matcher());
        };
        row("size", "{\"fileSize\":{\"lessThan\":1048576}}", Matcher::fileSize({Size::lessThan, 1048576}));
        row("kind", "{\"kind\":{\"doesNotEqual\":\"folder\"}}",
            Matcher::kind({KindTest::doesNotEqual, Kind::folder}));
        row("contains before doesNotContain", "{\"fileType\":{\"doesNotContain\":\"x\",\"contains\":\"y\"}}",
            Matcher::fileType({Text::contains, u"y"_s}));
        row("doesNotEqual before doesNotContain",
            "{\"fileName\":{\"doesNotContain\":\"x\",\"doesNotEqual\":\"y\"}}",
            name(Text::doesNotEqual, u"y"_s));
        row("fileName before kind", "{\"kind\":{\"equals\":\"pdf\"},\"fileName\":{\"equals\":\"a\"}}",
            name(Text::equals, u"a"_s));
        row("a failed key gives way", "{\"fileName\":{\"lessThan\":3},\"fileSize\":{\"lessThan\":3}}",
            Matcher::fileSize({Size::lessThan, 3}));
        row("unknown key", "{\"fileOwner\":{\"equals\":\"me\"}}", std::nullopt);
        row("negative size", "{\"fileSize\":{\"lessThan\":-1}}", std::nullopt);
        row("fractional size", "{\"fileSize\":{\"lessThan\":1.5}}", std::nullopt);
        row("unknown kind", "{\"kind\":{\"equals\":\"spreadsheet\"}}", std::nullopt);
        row("number for text", "{\"fileName\":{\"endsWith\":3}}", std::nullopt);
    }

    void decode()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, decodes);
        QFETCH(Matcher, expected);
        const auto decoded = Matcher::fromJson(QJsonDocument::fromJson(json).object());
        QCOMPARE(decoded.has_value(), decodes);
        QVERIFY(decodes ? *decoded == expected : decoded.error().kind == Matcher::Error::Kind::decodeError);
    }

    void encodesOneKeyPerLevel()
    {
        const QJsonArray encoded{
            Filter{Filter::OperatorType::Or, name(Text::endsWith, u".pdf"_s)}.toJson(),
            Filter{Filter::OperatorType::And, Matcher::fileSize({Size::lessThan, 1048576})}.toJson()};
        const QByteArray expected =
            "[{\"operatorType\":\"or\",\"matcher\":{\"fileName\":{\"endsWith\":\".pdf\"}}},"
            "{\"operatorType\":\"and\",\"matcher\":{\"fileSize\":{\"lessThan\":1048576}}}]";
        QCOMPARE(encoded, QJsonDocument::fromJson(expected).array());

        // Every case comes back as it went.
        QList<Matcher> all;
        for (Text test : {Text::contains, Text::doesNotContain, Text::startsWith, Text::endsWith,
                          Text::equals, Text::doesNotEqual}) {
            all << name(test, u"n"_s) << Matcher::fileType({test, u"t"_s})
                << Matcher::fileExtension({test, u"e"_s});
        }
        for (Size test : {Size::greaterThan, Size::lessThan, Size::equalTo}) {
            all << Matcher::fileSize({test, 18446744073709549568ull});
        }
        for (int kind = int(Kind::application); kind <= int(Kind::text); ++kind) {
            all << Matcher::kind({KindTest::equals, Kind(kind)})
                << Matcher::kind({KindTest::doesNotEqual, Kind(kind)});
        }
        for (const Matcher& matcher : all) {
            const QByteArray text = QJsonDocument(matcher.toJson()).toJson(QJsonDocument::Compact);
            const auto decoded = Matcher::fromJson(QJsonDocument::fromJson(text).object());
            QVERIFY2(decoded && *decoded == matcher, text.constData());
        }
    }

    void sizeInput_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<Unit>("unit");
        QTest::addColumn<qint64>("bytes"); // -1: too large
        QTest::newRow("leading zeros") << u"007"_s << u"7"_s << Unit::kiloBytes << qint64(7168);
        QTest::newRow("letters") << u"abc"_s << u"0"_s << Unit::kiloBytes << qint64(0);
        QTest::newRow("mixed") << u"1a2"_s << u"12"_s << Unit::megaBytes << qint64(12582912);
        QTest::newRow("empty") << QString() << QString() << Unit::gigaBytes << qint64(0);
        QTest::newRow("gigabytes") << u"3"_s << u"3"_s << Unit::gigaBytes << qint64(3221225472);
        QTest::newRow("beyond 64 bits")
            << u"99999999999999999999"_s << u"99999999999999999999"_s << Unit::kiloBytes << qint64(0);
        QTest::newRow("product too large")
            << u"9223372036854775807"_s << u"9223372036854775807"_s << Unit::gigaBytes << qint64(-1);
    }

    void sizeInput()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(Unit, unit);
        QFETCH(qint64, bytes);
        QCOMPARE(SizeItemMatcherInput::sanitized(typed), shown);
        const auto payload = SizeItemMatcherInput::bytes(shown, unit);
        QCOMPARE(payload.has_value(), bytes >= 0);
        if (payload) {
            QCOMPARE(*payload, quint64(bytes));
        }
    }
};

QTEST_GUILESS_MAIN(TestDirectoryObserverFilter)
#include "TestDirectoryObserverFilter.moc"
