#include "Domains/DragSession/DragSessionLabel.h"
#include "Domains/DragSession/DragSessionLabelColorController.h"
#include "support/TestSupport.h"

#include <algorithm>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <set>

using namespace Vantrope;
using Id = DragSessionLabelColor::Identifier;
using OptionalName = std::optional<QString>;

Q_DECLARE_METATYPE(DragSessionLabel)
Q_DECLARE_METATYPE(OptionalName)

namespace {

QJsonObject validLabelJson()
{
    return QJsonObject{
        {QStringLiteral("color"), QJsonObject{{QStringLiteral("id"), QStringLiteral("coral")}}},
        {QStringLiteral("colorVisibility"), QStringLiteral("always")},
        {QStringLiteral("userDefined"), true},
        {QStringLiteral("keepInOwnSpace"), false},
        {QStringLiteral("name"), QStringLiteral("Invoices")},
        {QStringLiteral("pinned"), true},
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
        std::set<QString> raws;
        for (const Id id : DragSessionLabelColor::allIdentifiers()) {
            const QString raw = DragSessionLabelColor::rawValue(id);
            QVERIFY(raws.insert(raw).second);
            QCOMPARE(DragSessionLabelColor::identifier(raw), std::optional(id));

            const AdaptiveColor color = DragSessionLabelColor(id).color();
            QCOMPARE(color.light().alphaF(), 1.0f);
            QCOMPARE(color.dark().alphaF(), 1.0f);
            QCOMPARE(color.color(false), color.light());
            QCOMPARE(color.color(true), color.dark());
            // Only coral and spring use one colour for both appearances.
            QCOMPARE(color.light() == color.dark(), id == Id::coral || id == Id::spring);
        }
        QCOMPARE(DragSessionLabelColor::rawValue(Id::monochrome), QStringLiteral("monochrome"));
        QCOMPARE(DragSessionLabelColor::rawValue(Id::pink), QStringLiteral("pink"));
        for (const char* unknown : {"", "Orange", "violet", "gray"}) {
            QCOMPARE(DragSessionLabelColor::identifier(QString::fromLatin1(unknown)), std::nullopt);
        }
    }

    void labelsSurviveJson_data()
    {
        QTest::addColumn<DragSessionLabel>("label");
        for (const Id id : DragSessionLabelColor::allIdentifiers()) {
            DragSessionLabel label;
            label.color = DragSessionLabelColor(id);
            QTest::addRow("%s", qPrintable(DragSessionLabelColor::rawValue(id))) << label;
        }
        DragSessionLabel full{DragSessionLabelColor(Id::khaki),
                              DragSessionLabel::ColorVisibility::always,
                              true,
                              true,
                              QStringLiteral("Rechnungen „2024“ ✓"),
                              true};
        QTest::newRow("every field set") << full;
        DragSessionLabel emptyName;
        emptyName.name = QString();
        QTest::newRow("empty name") << emptyName;
    }

    void labelsSurviveJson()
    {
        QFETCH(DragSessionLabel, label);
        const QByteArray text = QJsonDocument(label.toJson()).toJson();
        const auto decoded = DragSessionLabel::fromJson(QJsonDocument::fromJson(text).object());
        QVERIFY2(decoded, qPrintable(decoded ? QString() : decoded.error().description()));
        QCOMPARE(decoded->name, label.name);
        QVERIFY(*decoded == label);
    }

    void encodedLabelHasTheStoredShape()
    {
        DragSessionLabel label = DragSessionLabel::gray(true);
        label.color = DragSessionLabelColor(Id::turquoise);
        QCOMPARE(label.toJson(), QJsonObject({
                                     {QStringLiteral("color"),
                                      QJsonObject{{QStringLiteral("id"), QStringLiteral("turquoise")}}},
                                     {QStringLiteral("colorVisibility"), QStringLiteral("onMouseOver")},
                                     {QStringLiteral("userDefined"), false},
                                     {QStringLiteral("keepInOwnSpace"), true},
                                     {QStringLiteral("pinned"), false},
                                 }));
        label.name = QStringLiteral("Drafts");
        QCOMPARE(label.toJson().value(QStringLiteral("name")), QJsonValue(QStringLiteral("Drafts")));
    }

    void nameIsOptionalWhenDecoding_data()
    {
        QTest::addColumn<QJsonValue>("name"); // undefined: the key is left out
        QTest::addColumn<OptionalName>("expected");
        QTest::newRow("left out") << QJsonValue(QJsonValue::Undefined) << OptionalName();
        QTest::newRow("null") << QJsonValue(QJsonValue::Null) << OptionalName();
        QTest::newRow("empty") << QJsonValue(QString()) << OptionalName(QString());
        QTest::newRow("text") << QJsonValue(QStringLiteral("Photos"))
                              << OptionalName(QStringLiteral("Photos"));
    }

    void nameIsOptionalWhenDecoding()
    {
        QFETCH(QJsonValue, name);
        QFETCH(OptionalName, expected);

        QJsonObject json = validLabelJson();
        json.remove(QStringLiteral("name"));
        if (!name.isUndefined()) {
            json.insert(QStringLiteral("name"), name);
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
        const QString color = QStringLiteral("color");
        const QString visibility = QStringLiteral("colorVisibility");
        const QString pinned = QStringLiteral("pinned");

        QTest::newRow("not an object")
            << QJsonValue(QJsonArray()) << QString() << QStringLiteral("not an object");
        for (const QString& key :
             {color, visibility, QStringLiteral("userDefined"), QStringLiteral("keepInOwnSpace"), pinned}) {
            QTest::addRow("missing %s", qPrintable(key))
                << with(key, QJsonValue::Undefined) << key << QStringLiteral("missing");
        }
        QTest::newRow("unknown colour")
            << with(color, QJsonObject{{QStringLiteral("id"), QStringLiteral("purple")}}) << color
            << QStringLiteral("unknown colour id \"purple\"");
        QTest::newRow("colour without id")
            << with(color, QJsonObject()) << color << QStringLiteral("no \"id\"");
        QTest::newRow("colour id a number")
            << with(color, QJsonObject{{QStringLiteral("id"), 3}}) << color << QStringLiteral("not a string");
        QTest::newRow("colour as text")
            << with(color, QStringLiteral("coral")) << color << QStringLiteral("not an object");
        QTest::newRow("unknown visibility") << with(visibility, QStringLiteral("sometimes")) << visibility
                                            << QStringLiteral("unknown value \"sometimes\"");
        QTest::newRow("visibility a bool")
            << with(visibility, true) << visibility << QStringLiteral("not a string");
        QTest::newRow("pinned as text")
            << with(pinned, QStringLiteral("true")) << pinned << QStringLiteral("not a Boolean");
        QTest::newRow("name a number")
            << with(QStringLiteral("name"), 5) << QStringLiteral("name") << QStringLiteral("not a string");
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

    void grayLabelIsPlain()
    {
        for (const bool keepInOwnSpace : {false, true}) {
            QVERIFY(DragSessionLabel::gray(keepInOwnSpace) ==
                    (DragSessionLabel{DragSessionLabelColor(Id::monochrome),
                                      DragSessionLabel::ColorVisibility::onMouseOver, false, keepInOwnSpace,
                                      std::nullopt, false}));
        }
    }

    void tenthShelfRefillsThePool()
    {
        const QList<Id> standard = ids(DragSessionLabelColorController::standardColors());
        QCOMPARE(standard.size(), 9);
        QVERIFY(!standard.contains(Id::monochrome));

        DragSessionLabelColorController controller(DragSessionLabelColorController::shuffledStandardColors());
        const QList<Id> nine = take(controller, 9);
        QCOMPARE(std::set<Id>(nine.cbegin(), nine.cend()).size(), std::size_t(9));
        QVERIFY(controller.colors().isEmpty());
        QCOMPARE(ids(controller.unlockedColors()), nine);

        const Id tenth = controller.nextColor().id();
        QCOMPARE(tenth, Id::spring);
        QVERIFY(nine.contains(tenth)); // two open shelves now share a colour
        QCOMPARE(ids(controller.unlockedColors()), QList<Id>{Id::spring});
    }

    void refilledPoolRunsBackwardsFromSpring()
    {
        DragSessionLabelColorController controller({});
        QList<Id> backwards = ids(DragSessionLabelColorController::standardColors());
        std::reverse(backwards.begin(), backwards.end());
        QCOMPARE(take(controller, 9), backwards);
        QCOMPARE(backwards.constFirst(), Id::spring);
        QCOMPARE(backwards.constLast(), Id::orange);
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

    void shuffledStandardColoursArePermutations()
    {
        QRandomGenerator generator(1234);
        const QList<Id> standard = ids(DragSessionLabelColorController::standardColors());
        bool someOrderDiffers = false;
        for (int round = 0; round < 20; ++round) {
            QList<Id> shuffled = ids(DragSessionLabelColorController::shuffledStandardColors(generator));
            someOrderDiffers = someOrderDiffers || shuffled != standard;
            std::sort(shuffled.begin(), shuffled.end());
            QCOMPARE(shuffled, standard); // the standard list is in identifier order
        }
        QVERIFY(someOrderDiffers);
    }
};

QTEST_GUILESS_MAIN(TestDragSessionLabel)
#include "TestDragSessionLabel.moc"
