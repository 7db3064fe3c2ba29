// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Libraries/FileOperations/OperationSetting.h"

#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;
using Kind = OperationSettingError::Kind;

Q_DECLARE_METATYPE(std::optional<Kind>)

namespace {

const OperationSettings kSettings{
    {u"width"_s, u"Width"_s, OperationSetting::Type::integer, 1600, 1, 20000, {}},
    {u"format"_s,
     u"Format"_s,
     OperationSetting::Type::choice,
     u"png"_s,
     0,
     0,
     {{u"png"_s, u"PNG"_s}, {u"webp"_s, u"WebP"_s}}},
    {u"strip"_s, u"Strip"_s, OperationSetting::Type::boolean, false, 0, 0, {}},
    {u"destination"_s, u"Folder"_s, OperationSetting::Type::folder, u"/tmp"_s, 0, 0, {}},
};

} // namespace

class TestOperationSetting : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void resolves_data()
    {
        QTest::addColumn<QVariantMap>("values");
        QTest::addColumn<std::optional<Kind>>("error");
        QTest::addColumn<QString>("errorKey");
        QTest::addColumn<QVariantMap>("expected");

        const QVariantMap defaults{
            {u"width"_s, 1600}, {u"format"_s, u"png"_s}, {u"strip"_s, false}, {u"destination"_s, u"/tmp"_s}};
        auto with = [&](const QString& key, const QVariant& value) {
            QVariantMap map = defaults;
            map.insert(key, value);
            return map;
        };
        const std::optional<Kind> none;
        QTest::newRow("defaults fill in") << QVariantMap{} << none << QString() << defaults;
        QTest::newRow("typed integer")
            << QVariantMap{{u"width"_s, 800}} << none << QString() << with(u"width"_s, 800);
        QTest::newRow("integer as text")
            << QVariantMap{{u"width"_s, u" 640 "_s}} << none << QString() << with(u"width"_s, 640);
        QTest::newRow("whole double from JSON")
            << QVariantMap{{u"width"_s, 300.0}} << none << QString() << with(u"width"_s, 300);
        QTest::newRow("boolean as text")
            << QVariantMap{{u"strip"_s, u"yes"_s}} << none << QString() << with(u"strip"_s, true);
        QTest::newRow("known choice")
            << QVariantMap{{u"format"_s, u"webp"_s}} << none << QString() << with(u"format"_s, u"webp"_s);
        QTest::newRow("integer with letters")
            << QVariantMap{{u"width"_s, u"12abc"_s}} << std::optional(Kind::wrongType) << u"width"_s
            << QVariantMap{};
        QTest::newRow("fractional width") << QVariantMap{{u"width"_s, 12.5}} << std::optional(Kind::wrongType)
                                          << u"width"_s << QVariantMap{};
        QTest::newRow("boolean is not a number")
            << QVariantMap{{u"width"_s, true}} << std::optional(Kind::wrongType) << u"width"_s
            << QVariantMap{};
        QTest::newRow("below minimum")
            << QVariantMap{{u"width"_s, 0}} << std::optional(Kind::outOfRange) << u"width"_s << QVariantMap{};
        QTest::newRow("above maximum") << QVariantMap{{u"width"_s, u"20001"_s}}
                                       << std::optional(Kind::outOfRange) << u"width"_s << QVariantMap{};
        QTest::newRow("unknown choice") << QVariantMap{{u"format"_s, u"bmp"_s}}
                                        << std::optional(Kind::unknownChoice) << u"format"_s << QVariantMap{};
        QTest::newRow("unclear boolean") << QVariantMap{{u"strip"_s, u"maybe"_s}}
                                         << std::optional(Kind::wrongType) << u"strip"_s << QVariantMap{};
        QTest::newRow("empty folder") << QVariantMap{{u"destination"_s, QString()}}
                                      << std::optional(Kind::empty) << u"destination"_s << QVariantMap{};
        QTest::newRow("unknown key") << QVariantMap{{u"height"_s, 10}} << std::optional(Kind::unknownKey)
                                     << u"height"_s << QVariantMap{};
    }

    void resolves()
    {
        QFETCH(QVariantMap, values);
        QFETCH(std::optional<Kind>, error);
        QFETCH(QString, errorKey);
        QFETCH(QVariantMap, expected);

        const auto resolved = resolveOperationSettings(kSettings, values);
        if (error) {
            QVERIFY(!resolved);
            QCOMPARE(resolved.error().kind, *error);
            QCOMPARE(resolved.error().key, errorKey);
            QVERIFY(resolved.error().description().contains(errorKey));
            return;
        }
        QVERIFY2(resolved, qPrintable(resolved ? QString() : resolved.error().description()));
        QCOMPARE(*resolved, expected);
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QCOMPARE(resolved->value(it.key()).typeId(), it.value().typeId());
    }

    void refusalNamesWhatIsExpected()
    {
        const auto resolved = resolveOperationSettings(kSettings, {{u"format"_s, u"gif"_s}});
        QVERIFY(!resolved);
        QVERIFY2(resolved.error().description().contains(u"png, webp"_s),
                 qPrintable(resolved.error().description()));
        const auto range = resolveOperationSettings(kSettings, {{u"width"_s, -3}});
        QVERIFY(!range);
        QVERIFY2(range.error().description().contains(u"1 to 20000"_s),
                 qPrintable(range.error().description()));
    }
};

QTEST_GUILESS_MAIN(TestOperationSetting)
#include "TestOperationSetting.moc"
