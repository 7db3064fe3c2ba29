// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Domains/DragSession/DragSessionLabel.h"
#include "Domains/DragSession/DragSessionLabelColorController.h"
#include "support/TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <set>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Id = DragSessionLabelColor::Identifier;
using OptionalName = std::optional<QString>;

Q_DECLARE_METATYPE(OptionalName)

namespace {

QJsonObject validLabelJson()
{
    return QJsonObject{
        {u"color"_s, QJsonObject{{u"id"_s, u"coral"_s}}},
        {u"colorVisibility"_s, u"always"_s},
        {u"userDefined"_s, true},
        {u"keepInOwnSpace"_s, false},
        {u"name"_s, u"Invoices"_s},
        {u"pinned"_s, true},
    };
}

QList<Id> ids(const QList<DragSessionLabelColor>& colors)
{
    QList<Id> result;
    for (const auto& color : colors) {
        result.append(color.id());
    }
    return result;
}

QList<Id> take(DragSessionLabelColorController& controller, int count)
{
    QList<Id> result;
    for (int i = 0; i < count; ++i) {
        result.append(controller.nextColor().id());
    }
    return result;
}

} // namespace

class TestDragSessionLabel final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void colourIdentifiers()
    {
        // The stored names, in identifier order.
        const QStringList names{u"monochrome"_s, u"orange"_s, u"yellow"_s, u"green"_s, u"turquoise"_s,
                                u"blue"_s,       u"pink"_s,   u"coral"_s,  u"khaki"_s, u"spring"_s};
        QStringList raws;
        for (const Id id : DragSessionLabelColor::allIdentifiers()) {
            raws.append(DragSessionLabelColor::rawValue(id));
            QCOMPARE(DragSessionLabelColor::identifier(raws.last()), std::optional(id));
        }
        QCOMPARE(raws, names);
        for (const char* unknown : {"", "Orange", "violet", "gray"}) {
            QCOMPARE(DragSessionLabelColor::identifier(QString::fromLatin1(unknown)), std::nullopt);
        }
    }

    void labelSurvivesJson()
    {
        const DragSessionLabel label{DragSessionLabelColor(Id::khaki),
                                     DragSessionLabel::ColorVisibility::always,
                                     true,
                                     true,
                                     u"Rechnungen „2024“ ✓"_s,
                                     true};
        const QByteArray text = QJsonDocument(label.toJson()).toJson();
        const auto decoded = DragSessionLabel::fromJson(QJsonDocument::fromJson(text).object());
        QVERIFY2(decoded, qPrintable(decoded ? QString() : decoded.error().description()));
        QCOMPARE(decoded->name, label.name);
        QVERIFY(*decoded == label);
    }

    void grayLabelHasTheStoredShape()
    {
        DragSessionLabel label = DragSessionLabel::gray(true);
        QCOMPARE(label.toJson(), QJsonObject({
                                     {u"color"_s, QJsonObject{{u"id"_s, u"monochrome"_s}}},
                                     {u"colorVisibility"_s, u"onMouseOver"_s},
                                     {u"userDefined"_s, false},
                                     {u"keepInOwnSpace"_s, true},
                                     {u"pinned"_s, false},
                                 }));
        QVERIFY(!DragSessionLabel::gray(false).keepInOwnSpace);
        label.name = u"Drafts"_s;
        QCOMPARE(label.toJson().value(u"name"_s), QJsonValue(u"Drafts"_s));
    }

    void nameIsOptionalWhenDecoding_data()
    {
        QTest::addColumn<QJsonValue>("name"); // undefined: the key is left out
        QTest::addColumn<OptionalName>("expected");
        QTest::newRow("left out") << QJsonValue(QJsonValue::Undefined) << OptionalName();
        QTest::newRow("null") << QJsonValue(QJsonValue::Null) << OptionalName();
        QTest::newRow("empty") << QJsonValue(QString()) << OptionalName(QString());
        QTest::newRow("text") << QJsonValue(u"Photos"_s) << OptionalName(u"Photos"_s);
    }

    void nameIsOptionalWhenDecoding()
    {
        QFETCH(QJsonValue, name);
        QFETCH(OptionalName, expected);

        QJsonObject json = validLabelJson();
        json.remove(u"name"_s);
        if (!name.isUndefined()) {
            json.insert(u"name"_s, name);
        }
        const auto decoded = DragSessionLabel::fromJson(json);
        QVERIFY(decoded);
        QCOMPARE(decoded->name, expected);
        QVERIFY(*decoded ==
                (DragSessionLabel{DragSessionLabelColor(Id::coral), DragSessionLabel::ColorVisibility::always,
                                  true, false, expected, true}));
    }

    void decodingRejectsBrokenLabels_data()
    {
        QTest::addColumn<QJsonValue>("json");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("reason");

        const auto with = [](const QString& key, const QJsonValue& value) {
            QJsonObject json = validLabelJson();
            if (value.isUndefined()) {
                json.remove(key);
            } else {
                json.insert(key, value);
            }
            return QJsonValue(json);
        };
        const QString color = u"color"_s;
        const QString visibility = u"colorVisibility"_s;
        const QString pinned = u"pinned"_s;

        QTest::newRow("not an object") << QJsonValue(QJsonArray()) << QString() << u"not an object"_s;
        for (const QString& key : {color, visibility, u"userDefined"_s, u"keepInOwnSpace"_s, pinned}) {
            QTest::addRow("missing %s", qPrintable(key))
                << with(key, QJsonValue::Undefined) << key << u"missing"_s;
        }
        QTest::newRow("unknown colour")
            << with(color, QJsonObject{{u"id"_s, u"purple"_s}}) << color << u"unknown colour id \"purple\""_s;
        QTest::newRow("colour without id") << with(color, QJsonObject()) << color << u"no \"id\""_s;
        QTest::newRow("colour id a number")
            << with(color, QJsonObject{{u"id"_s, 3}}) << color << u"not a string"_s;
        QTest::newRow("colour as text") << with(color, u"coral"_s) << color << u"not an object"_s;
        QTest::newRow("unknown visibility")
            << with(visibility, u"sometimes"_s) << visibility << u"unknown value \"sometimes\""_s;
        QTest::newRow("visibility a bool") << with(visibility, true) << visibility << u"not a string"_s;
        QTest::newRow("pinned as text") << with(pinned, u"true"_s) << pinned << u"not a Boolean"_s;
        QTest::newRow("name a number") << with(u"name"_s, 5) << u"name"_s << u"not a string"_s;
    }

    void decodingRejectsBrokenLabels()
    {
        QFETCH(QJsonValue, json);
        QFETCH(QString, key);
        QFETCH(QString, reason);

        const auto decoded = DragSessionLabel::fromJson(json);
        QVERIFY(!decoded);
        QCOMPARE(decoded.error().key, key);
        QVERIFY2(decoded.error().description().contains(reason), qPrintable(decoded.error().description()));
    }

    void emptyPoolStartsOverFromSpring()
    {
        // The standard colours are all but monochrome; a refilled pool hands them out from its end.
        const QList<Id> backwards{Id::spring,    Id::khaki, Id::coral,  Id::pink,  Id::blue,
                                  Id::turquoise, Id::green, Id::yellow, Id::orange};
        DragSessionLabelColorController controller(DragSessionLabelColorController::shuffledStandardColors());
        const QList<Id> nine = take(controller, 9);
        QCOMPARE(std::set<Id>(nine.cbegin(), nine.cend()),
                 std::set<Id>(backwards.cbegin(), backwards.cend()));
        QVERIFY(controller.colors().isEmpty());
        QCOMPARE(ids(controller.unlockedColors()), nine);

        // The tenth shelf shares a colour with an open one, and the pool forgets what it handed out.
        QCOMPARE(controller.nextColor().id(), Id::spring);
        QCOMPARE(ids(controller.unlockedColors()), QList<Id>{Id::spring});
        QCOMPARE(take(controller, 8), backwards.mid(1));
    }

    void givenBackColourReturnsToThePool_data()
    {
        QTest::addColumn<Id>("givenBack");
        QTest::addColumn<bool>("returns");
        QTest::newRow("handed out") << Id::blue << true;
        QTest::newRow("never handed out") << Id::monochrome << false;
        QTest::newRow("still in the pool") << Id::orange << false;
    }

    void givenBackColourReturnsToThePool()
    {
        QFETCH(Id, givenBack);
        QFETCH(bool, returns);

        DragSessionLabelColorController controller({DragSessionLabelColor(Id::orange),
                                                    DragSessionLabelColor(Id::green),
                                                    DragSessionLabelColor(Id::blue)});
        QCOMPARE(controller.nextColor().id(), Id::blue);
        controller.giveBack(DragSessionLabelColor(givenBack));
        if (!returns) {
            QCOMPARE(ids(controller.colors()), (QList<Id>{Id::orange, Id::green}));
            QCOMPARE(ids(controller.unlockedColors()), QList<Id>{Id::blue});
            return;
        }
        QVERIFY(controller.unlockedColors().isEmpty());
        // Colours no shelf has had come first; the returned one waits its turn.
        QCOMPARE(take(controller, 3), (QList<Id>{Id::green, Id::orange, Id::blue}));
    }

    void standardColoursAreShuffled()
    {
        QRandomGenerator generator(1234);
        const QList<Id> standard = ids(DragSessionLabelColorController::standardColors());
        bool someOrderDiffers = false;
        for (int round = 0; round < 20 && !someOrderDiffers; ++round) {
            someOrderDiffers =
                ids(DragSessionLabelColorController::shuffledStandardColors(generator)) != standard;
        }
        QVERIFY(someOrderDiffers);
    }

    void namesAreKeptToOneShortLine_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<OptionalName>("kept");
        const QString emoji = u"\U0001F600"_s;
        QTest::newRow("plain") << u"Invoices"_s << OptionalName(u"Invoices"_s);
        QTest::newRow("spaces around") << u"  Invoices \t"_s << OptionalName(u"Invoices"_s);
        QTest::newRow("inner spaces stay") << u"a  b"_s << OptionalName(u"a  b"_s);
        QTest::newRow("line breaks of every kind") << u"one\ntwo\r\nthree\rfour\u2028five\u2029six"_s
                                                   << OptionalName(u"one two three four five six"_s);
        QTest::newRow("blank lines are one gap") << u"one\n\n\n\ntwo"_s << OptionalName(u"one two"_s);
        QTest::newRow("a break beside a space adds none") << u"one \ntwo"_s << OptionalName(u"one two"_s);
        QTest::newRow("control characters go") << u"a\u0007b\u001bc"_s << OptionalName(u"abc"_s);
        QTest::newRow("nothing but breaks") << u"\n\r\n \t"_s << OptionalName();
        QTest::newRow("empty") << QString() << OptionalName();
        QTest::newRow("4,000 characters") << QString(4000, u'x') << OptionalName(QString(256, u'x'));
        QTest::newRow("exactly the limit") << QString(256, u'x') << OptionalName(QString(256, u'x'));
        QTest::newRow("leading spaces do not count")
            << (QString(300, u' ') + u"name"_s) << OptionalName(u"name"_s);
        QTest::newRow("a pair is not split at the limit")
            << (QString(255, u'x') + emoji + u"tail"_s) << OptionalName(QString(255, u'x'));
        QTest::newRow("a pair within the limit stays")
            << (QString(254, u'x') + emoji + u"tail"_s) << OptionalName(QString(254, u'x') + emoji);
        QTest::newRow("no trailing space after the cut")
            << (QString(255, u'x') + u" yz"_s) << OptionalName(QString(255, u'x'));
    }

    void namesAreKeptToOneShortLine()
    {
        QFETCH(QString, typed);
        QFETCH(OptionalName, kept);
        QCOMPARE(DragSessionLabel::cleanName(typed), kept);
        if (kept) {
            // What is kept is kept as it is.
            QCOMPARE(DragSessionLabel::cleanName(*kept), kept);
        }
    }
};

QTEST_GUILESS_MAIN(TestDragSessionLabel)
#include "TestDragSessionLabel.moc"
