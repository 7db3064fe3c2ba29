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
Q_DECLARE_METATYPE(Vantrope::DirectoryObserverFilter)
Q_DECLARE_METATYPE(Vantrope::SizeItemMatcherInput::Unit)

namespace {

Matcher name(Text comparison, const QString& pattern)
{
    return Matcher::fileName({comparison, pattern});
}

Filter rule(Filter::OperatorType operatorType, Matcher matcher)
{
    return {operatorType, std::move(matcher)};
}

// An item that need not exist: names, extensions and sizes are not read from the disk.
DirectoryObserverItem item(const QString& fileName, quint64 size = 1)
{
    DirectoryObserverItem item;
    item.url = QUrl::fromLocalFile(u"/nonexistent/"_s + fileName);
    item.name = fileName;
    item.size = size;
    return item;
}

constexpr auto And = Filter::OperatorType::And;
constexpr auto Or = Filter::OperatorType::Or;

} // namespace

class TestDirectoryObserverFilter final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void evaluate_data()
    {
        QTest::addColumn<QList<Filter>>("filters");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<bool>("expected");

        const QList<Filter> andThenOr{rule(And, name(Text::contains, u"a"_s)), rule(Or, name(Text::contains, u"b"_s))};
        const QList<Filter> orThenAnd{rule(Or, name(Text::contains, u"a"_s)), rule(And, name(Text::contains, u"b"_s))};
        const QList<Filter> ors{rule(Or, name(Text::contains, u"a"_s)), rule(Or, name(Text::contains, u"b"_s))};
        const QList<Filter> ands{rule(And, name(Text::contains, u"a"_s)), rule(And, name(Text::contains, u"b"_s))};
        const QList<Filter> single{rule(Or, name(Text::contains, u"a"_s))};

        QTest::newRow("no rules") << QList<Filter>() << u"anything"_s << true;
        QTest::newRow("and a, or b: b") << andThenOr << u"b"_s << false;
        QTest::newRow("and a, or b: a") << andThenOr << u"a"_s << true;
        QTest::newRow("and a, or b: ab") << andThenOr << u"ab"_s << true;
        QTest::newRow("or a, and b: a") << orThenAnd << u"a"_s << false;
        QTest::newRow("or a, and b: b") << orThenAnd << u"b"_s << true;
        QTest::newRow("or a, or b: c") << ors << u"c"_s << false;
        QTest::newRow("or a, or b: b") << ors << u"b"_s << true;
        QTest::newRow("and a, and b: a") << ands << u"a"_s << false;
        QTest::newRow("and a, and b: ba") << ands << u"ba"_s << true;
        QTest::newRow("single or is mandatory") << single << u"b"_s << false;
        QTest::newRow("single or holds") << single << u"a"_s << true;
    }

    void evaluate()
    {
        QFETCH(QList<Filter>, filters);
        QFETCH(QString, fileName);
        QFETCH(bool, expected);
        QCOMPARE(Filter::evaluate(item(fileName), false, filters), expected);
    }

    void matcher_data()
    {
        QTest::addColumn<Matcher>("matcher");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<quint64>("size");
        QTest::addColumn<bool>("caseSensitive");
        QTest::addColumn<bool>("expected");

        const auto extension = [](Text comparison, const QString& pattern) {
            return Matcher::fileExtension({comparison, pattern});
        };
        const auto kind = [](KindTest comparison, Kind kind) { return Matcher::kind({comparison, kind}); };
        const auto size = [](Size comparison, quint64 bytes) { return Matcher::fileSize({comparison, bytes}); };

        QTest::newRow("endsWith ignores case") << name(Text::endsWith, u".PDF"_s) << u"a.pdf"_s << 1ull << false << true;
        QTest::newRow("endsWith minds case") << name(Text::endsWith, u".PDF"_s) << u"a.pdf"_s << 1ull << true << false;
        QTest::newRow("startsWith") << name(Text::startsWith, u"scan"_s) << u"Scan 12.png"_s << 1ull << false << true;
        QTest::newRow("doesNotContain") << name(Text::doesNotContain, u"draft"_s) << u"final.doc"_s << 1ull << false << true;
        QTest::newRow("equals") << name(Text::equals, u"A.TXT"_s) << u"a.txt"_s << 1ull << false << true;
        QTest::newRow("doesNotEqual") << name(Text::doesNotEqual, u"a.txt"_s) << u"a.txt"_s << 1ull << false << false;
        QTest::newRow("last extension only") << extension(Text::equals, u"pdf"_s) << u"a.tar.gz"_s << 1ull << false << false;
        QTest::newRow("last extension") << extension(Text::equals, u"gz"_s) << u"a.tar.gz"_s << 1ull << false << true;
        QTest::newRow("no extension") << extension(Text::doesNotEqual, u"pdf"_s) << u"README"_s << 1ull << false << true;
        QTest::newRow("dot file has no extension") << extension(Text::equals, u"pdf"_s) << u".pdf"_s << 1ull << false << false;
        QTest::newRow("not image without extension") << kind(KindTest::doesNotEqual, Kind::image) << u"README"_s << 1ull << false << true;
        QTest::newRow("image without extension") << kind(KindTest::equals, Kind::image) << u"README"_s << 1ull << false << false;
        QTest::newRow("kind ignores the case flag") << kind(KindTest::equals, Kind::image) << u"photo.JPG"_s << 1ull << true << true;
        QTest::newRow("not image for an image") << kind(KindTest::doesNotEqual, Kind::image) << u"photo.png"_s << 1ull << false << false;
        QTest::newRow("gz is no archive") << kind(KindTest::equals, Kind::archive) << u"a.gz"_s << 1ull << false << false;
        QTest::newRow("gzip is") << kind(KindTest::equals, Kind::archive) << u"a.gzip"_s << 1ull << false << true;
        QTest::newRow("csv is text") << kind(KindTest::equals, Kind::text) << u"data.csv"_s << 1ull << false << true;
        QTest::newRow("csv is a document") << kind(KindTest::equals, Kind::document) << u"data.csv"_s << 1ull << false << true;
        QTest::newRow("keynote") << kind(KindTest::equals, Kind::presentation) << u"talk.keynote"_s << 1ull << false << true;
        QTest::newRow("greaterThan is strict") << size(Size::greaterThan, 10) << u"a"_s << 10ull << false << false;
        QTest::newRow("greaterThan") << size(Size::greaterThan, 10) << u"a"_s << 11ull << false << true;
        QTest::newRow("lessThan is strict") << size(Size::lessThan, 10) << u"a"_s << 10ull << false << false;
        QTest::newRow("equalTo zero") << size(Size::equalTo, 0) << u"a"_s << 0ull << false << true;
    }

    void matcher()
    {
        QFETCH(Matcher, matcher);
        QFETCH(QString, fileName);
        QFETCH(quint64, size);
        QFETCH(bool, caseSensitive);
        QFETCH(bool, expected);
        QCOMPARE(matcher.matches(item(fileName, size), caseSensitive), expected);
    }

    void folderAndTypeReadTheDisk()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(u"folder.png"_s);
        const QString picture = dir.filePath(u"picture"_s);
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(Test::writeFile(picture, QByteArray::fromHex("89504e470d0a1a0a0000000d49484452")));
        const auto onDisk = [](const QString& path) { return DirectoryObserverItem::fromUrl(QUrl::fromLocalFile(path)); };

        // Both comparisons select the folders.
        for (KindTest comparison : {KindTest::equals, KindTest::doesNotEqual}) {
            const Matcher folders = Matcher::kind({comparison, Kind::folder});
            QVERIFY(folders.matches(onDisk(folder), false));
            QVERIFY(!folders.matches(onDisk(picture), false));
        }
        // The type comes from the content where the name says nothing.
        QVERIFY(Matcher::fileType({Text::startsWith, u"image/"_s}).matches(onDisk(picture), false));
        QVERIFY(Matcher::fileType({Text::equals, QString()}).matches(onDisk(dir.filePath(u"gone.png"_s)), false));
    }

    void decode_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<bool>("decodes");
        QTest::addColumn<Matcher>("expected");

        QTest::newRow("name") << QByteArray(R"({"fileName":{"endsWith":".pdf"}})") << true << name(Text::endsWith, u".pdf"_s);
        QTest::newRow("type") << QByteArray(R"({"fileType":{"contains":"image"}})") << true
                              << Matcher::fileType({Text::contains, u"image"_s});
        QTest::newRow("size") << QByteArray(R"({"fileSize":{"lessThan":1048576}})") << true
                              << Matcher::fileSize({Size::lessThan, 1048576});
        QTest::newRow("kind") << QByteArray(R"({"kind":{"doesNotEqual":"folder"}})") << true
                              << Matcher::kind({KindTest::doesNotEqual, Kind::folder});
        QTest::newRow("contains before doesNotContain")
            << QByteArray(R"({"fileName":{"doesNotContain":"x","contains":"y"}})") << true << name(Text::contains, u"y"_s);
        QTest::newRow("doesNotEqual before doesNotContain")
            << QByteArray(R"({"fileName":{"doesNotContain":"x","doesNotEqual":"y"}})") << true
            << name(Text::doesNotEqual, u"y"_s);
        QTest::newRow("fileName before kind")
            << QByteArray(R"({"kind":{"equals":"pdf"},"fileName":{"equals":"a"}})") << true << name(Text::equals, u"a"_s);
        QTest::newRow("a failed key gives way")
            << QByteArray(R"({"fileName":{"greaterThan":3},"fileSize":{"greaterThan":3}})") << true
            << Matcher::fileSize({Size::greaterThan, 3});
        QTest::newRow("unknown key") << QByteArray(R"({"fileOwner":{"equals":"me"}})") << false << Matcher();
        QTest::newRow("negative size") << QByteArray(R"({"fileSize":{"lessThan":-1}})") << false << Matcher();
        QTest::newRow("fractional size") << QByteArray(R"({"fileSize":{"lessThan":1.5}})") << false << Matcher();
        QTest::newRow("unknown kind") << QByteArray(R"({"kind":{"equals":"spreadsheet"}})") << false << Matcher();
        QTest::newRow("number for text") << QByteArray(R"({"fileName":{"endsWith":3}})") << false << Matcher();
        QTest::newRow("empty") << QByteArray("{}") << false << Matcher();
    }

    void decode()
    {
        QFETCH(QByteArray, json);
        QFETCH(bool, decodes);
        QFETCH(Matcher, expected);
        const auto decoded = Matcher::fromJson(QJsonDocument::fromJson(json).object());
        QCOMPARE(decoded.has_value(), decodes);
        if (decodes) {
            QVERIFY(*decoded == expected);
        } else {
            QVERIFY(decoded.error().kind == Matcher::Error::Kind::decodeError);
        }
    }

    void encodesOneKeyPerLevel()
    {
        const QList<Filter> filters{rule(Or, name(Text::endsWith, u".pdf"_s)),
                                    rule(And, Matcher::fileSize({Size::lessThan, 1048576}))};
        QJsonArray encoded;
        for (const Filter& filter : filters) {
            encoded.append(filter.toJson());
        }
        const QJsonArray expected = QJsonDocument::fromJson(
            R"([{"operatorType":"or","matcher":{"fileName":{"endsWith":".pdf"}}},)"
            R"({"operatorType":"and","matcher":{"fileSize":{"lessThan":1048576}}}])").array();
        QCOMPARE(encoded, expected);

        // Every case comes back as it went.
        QList<Matcher> all;
        for (Text comparison : {Text::contains, Text::doesNotContain, Text::startsWith, Text::endsWith, Text::equals,
                                Text::doesNotEqual}) {
            all << name(comparison, u"n"_s) << Matcher::fileType({comparison, u"t"_s})
                << Matcher::fileExtension({comparison, u"e"_s});
        }
        for (Size comparison : {Size::greaterThan, Size::lessThan, Size::equalTo}) {
            all << Matcher::fileSize({comparison, 18446744073709549568ull});
        }
        for (Kind kind : {Kind::application, Kind::archive, Kind::document, Kind::folder, Kind::image, Kind::video,
                          Kind::audio, Kind::pdf, Kind::presentation, Kind::text}) {
            all << Matcher::kind({KindTest::equals, kind}) << Matcher::kind({KindTest::doesNotEqual, kind});
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
        QTest::newRow("zero") << u"0"_s << u"0"_s << Unit::megaBytes << qint64(0);
        QTest::newRow("all zeros") << u"000"_s << u"0"_s << Unit::megaBytes << qint64(0);
        QTest::newRow("mixed") << u"1a2"_s << u"12"_s << Unit::megaBytes << qint64(12582912);
        QTest::newRow("empty") << QString() << QString() << Unit::gigaBytes << qint64(0);
        QTest::newRow("gigabytes") << u"3"_s << u"3"_s << Unit::gigaBytes << qint64(3221225472);
        QTest::newRow("beyond a 64-bit integer") << u"99999999999999999999"_s << u"99999999999999999999"_s
                                                 << Unit::kiloBytes << qint64(0);
        QTest::newRow("product too large") << u"9223372036854775807"_s << u"9223372036854775807"_s
                                           << Unit::gigaBytes << qint64(-1);
    }

    void sizeInput()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(Unit, unit);
        QFETCH(qint64, bytes);

        QCOMPARE(SizeItemMatcherInput::sanitized(typed), shown);
        const auto payload = SizeItemMatcherInput::bytes(SizeItemMatcherInput::sanitized(typed), unit);
        if (bytes < 0) {
            QVERIFY(!payload.has_value());
        } else {
            QVERIFY(payload.has_value());
            QCOMPARE(*payload, quint64(bytes));
        }
    }
};

QTEST_GUILESS_MAIN(TestDirectoryObserverFilter)
#include "TestDirectoryObserverFilter.moc"
