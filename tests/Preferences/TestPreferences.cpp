#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

using StoredValues = std::map<PreferenceKey, QVariant>;
Q_DECLARE_METATYPE(StoredValues)

namespace {

// A fallback unlike anything registerDefaults writes, so that a read of it cannot pass by chance.
template<typename T> T fallbackFor()
{
    if constexpr (std::is_same_v<T, bool>) {
        return true;
    } else if constexpr (std::is_same_v<T, int>) {
        return 42;
    } else if constexpr (std::is_same_v<T, QString>) {
        return u"fallback"_s;
    } else if constexpr (std::is_same_v<T, QStringList>) {
        return {u"a"_s};
    } else if constexpr (std::is_same_v<T, QDateTime>) {
        return QDateTime(QDate(2021, 6, 1), QTime(8, 30), Qt::UTC);
    } else if constexpr (std::is_same_v<T, QByteArray>) {
        return QByteArray("\x00\xff", 2);
    } else {
        return {{u"k"_s, QVariantMap{{u"keyCode"_s, 7}}}};
    }
}

// Reads `key` through its typed preference, as the program does: {stored value, value with fallback,
// fallback}.
struct TypedRead {
    std::optional<QVariant> stored;
    QVariant withFallback;
    QVariant fallback;
};

TypedRead typedRead(const Preferences& preferences, PreferenceKey key)
{
    switch (key) {
#define VANTROPE_TEST_CASE(name, stored, type)                                                               \
    case PreferenceKey::name: {                                                                              \
        using Traits = PreferenceValueTraits<type>;                                                          \
        const auto value = preferences.storedValue(PreferenceKeys::name);                                    \
        return {value ? std::optional(Traits::toVariant(*value)) : std::nullopt,                             \
                Traits::toVariant(preferences.value(PreferenceKeys::name, fallbackFor<type>())),             \
                Traits::toVariant(fallbackFor<type>())};                                                     \
    }
        VANTROPE_PREFERENCE_KEYS(VANTROPE_TEST_CASE)
#undef VANTROPE_TEST_CASE
    }
    return {};
}

std::unique_ptr<Preferences> makePreferences(StoredValues values = {})
{
    return std::make_unique<Preferences>(std::make_unique<MemoryPreferenceStorage>(std::move(values)));
}

const StoredValues& stored(const Preferences& preferences)
{
    return static_cast<const MemoryPreferenceStorage&>(preferences.storage()).storage();
}

StoredValues firstRunDefaults()
{
    return {
        {PreferenceKey::prefersShowInDock, false},
        {PreferenceKey::doubleClickAction, 0},
        {PreferenceKey::shelfTriggerModifierKey, u"shift"_s},
        {PreferenceKey::shelfTriggerModifierKeyEnabled, true},
        {PreferenceKey::didMigrateTemporaryDirectoryStructure, false},
        {PreferenceKey::draggableTextForcesPlainText, false},
        {PreferenceKey::lastOutlineDisplayMode, 0},
        {PreferenceKey::shelfHotkeysEnabled, true},
        {PreferenceKey::instantActionsEnabled, true},
        {PreferenceKey::notchDragHighlightBehavior, 0},
        {PreferenceKey::shelfRetractionEnabled, false},
        {PreferenceKey::cloudRequiresAgreement, true},
        {PreferenceKey::notchDragEnabled, true},
        {PreferenceKey::userScreenshotShowConfirmationMessage, true},
        {PreferenceKey::didPerformWatchedFoldersFilterMigration, false},
        {PreferenceKey::preferredMenuBarIconIdentifier, u"traditional"_s},
        {PreferenceKey::fileOperationMainMenuIdentifiers, QStringList{u"file_op_copy"_s, u"file_op_move"_s}},
    };
}

// Turns a stored form into a settings item and back: {case index, stored form}, or nothing.
using SettingsItemReader = std::function<std::optional<std::pair<int, QVariant>>(const QVariant&)>;

template<typename Enum, typename Stored> SettingsItemReader reader(std::optional<Enum> (*read)(Stored))
{
    return [read](const QVariant& form) -> std::optional<std::pair<int, QVariant>> {
        std::optional<Enum> item;
        if constexpr (std::is_same_v<Stored, int>) {
            item = read(form.toInt());
        } else {
            item = read(form.toString());
        }
        if (!item) {
            return std::nullopt;
        }
        return std::pair{static_cast<int>(*item), QVariant(SettingsItem::storedValue(*item))};
    };
}

} // namespace

Q_DECLARE_METATYPE(SettingsItemReader)

class TestPreferences final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void storedNames()
    {
        // Two keys of one name would fail the round trip.
        for (const PreferenceKey key : allPreferenceKeys()) {
            QCOMPARE(preferenceKeyFromStoredName(preferenceStoredName(key)), std::optional(key));
        }
        // Stored values must survive, so these odd names stay as existing files have them.
        QCOMPARE(preferenceStoredName(PreferenceKey::hasLaunchedApp), u"IsFirstLaunch"_s);
        QCOMPARE(preferenceStoredName(PreferenceKey::didPerformInstantActionMigration),
                 u"DidPerformanceInstantActionMigration"_s);
        for (const char* unknown :
             {"", "isFirstLaunch", "hasLaunchedApp", "DidPerformInstantActionMigration"}) {
            QCOMPARE(preferenceKeyFromStoredName(QString::fromLatin1(unknown)), std::nullopt);
        }
    }

    void valuesOfTheWrongTypeReadAsAbsent_data()
    {
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QVariant>("expected"); // null: reads as absent

        const QVariant absent;
        const QDateTime date(QDate(2024, 2, 29), QTime(23, 59, 59, 999), Qt::UTC);
        const QStringList apps{u"org.example.one"_s, u"org.example.two"_s};
        const QVariantMap combo{{u"keyCode"_s, 49}};
        const QVariantMap combos{{u"custom_pin"_s, combo}};
        using K = PreferenceKey;

        QTest::newRow("bool") << K::launchAtLogin << QVariant(true) << QVariant(true);
        QTest::newRow("bool from int") << K::launchAtLogin << QVariant(1) << absent;
        QTest::newRow("int from long") << K::numberOfDrops << QVariant(qlonglong(-5)) << QVariant(-5);
        QTest::newRow("int from unsigned") << K::numberOfDrops << QVariant(7u) << QVariant(7);
        QTest::newRow("int from text") << K::numberOfDrops << QVariant(u"5"_s) << absent;
        QTest::newRow("int too large") << K::numberOfDrops << QVariant(qlonglong(1) << 40) << absent;
        QTest::newRow("string from bytes") << K::cloudLinkType << QVariant(QByteArray("x")) << absent;
        QTest::newRow("list from variants")
            << K::ignoredApplication << QVariant(QVariantList{apps[0], apps[1]}) << QVariant(apps);
        QTest::newRow("empty list") << K::ignoredApplication << QVariant(QVariantList())
                                    << QVariant(QStringList());
        QTest::newRow("list from text") << K::ignoredApplication << QVariant(apps[0]) << absent;
        QTest::newRow("list with a number")
            << K::ignoredApplication << QVariant(QVariantList{apps[0], 1}) << absent;
        QTest::newRow("dictionary") << K::showHideHotKeyCombo << QVariant(combo) << QVariant(combo);
        QTest::newRow("dictionary from list")
            << K::showHideHotKeyCombo << QVariant(QVariantList{combo}) << absent;
        QTest::newRow("dictionaries")
            << K::registeredKeyboardActionCombinations << QVariant(combos) << QVariant(combos);
        QTest::newRow("dictionaries with a number")
            << K::registeredKeyboardActionCombinations << QVariant(QVariantMap{{u"x"_s, 3}}) << absent;
        QTest::newRow("date") << K::lastRatingPromptDate << QVariant(date) << QVariant(date);
        QTest::newRow("date from text")
            << K::lastRatingPromptDate << QVariant(date.toString(Qt::ISODate)) << absent;
        QTest::newRow("invalid date") << K::lastRatingPromptDate << QVariant(QDateTime()) << absent;
        QTest::newRow("data from text") << K::bucketDestinationPath << QVariant(u"z"_s) << absent;
    }

    void valuesOfTheWrongTypeReadAsAbsent()
    {
        QFETCH(PreferenceKey, key);
        QFETCH(QVariant, stored);
        QFETCH(QVariant, expected);

        const auto preferences = makePreferences({{key, stored}});
        const TypedRead read = typedRead(*preferences, key);
        if (expected.isNull()) {
            QVERIFY(!read.stored);
            QCOMPARE(read.withFallback, read.fallback);
            // Reading leaves it alone: a fallback is never written.
            QCOMPARE(preferences->storage().value(key), std::optional(stored));
        } else {
            QVERIFY(read.stored);
            QCOMPARE(read.stored->typeId(), expected.typeId());
            QCOMPARE(*read.stored, expected);
        }
    }

    void registerDefaultsOnFirstRunAndUpgrade_data()
    {
        QTest::addColumn<bool>("upgrade");
        QTest::addColumn<StoredValues>("expected");

        QTest::newRow("first run") << false << firstRunDefaults();
        // hasLaunchedApp is set: what new users get stays off, and retraction stays unset.
        StoredValues upgrade = firstRunDefaults();
        upgrade[PreferenceKey::hasLaunchedApp] = true;
        upgrade[PreferenceKey::cloudRequiresAgreement] = false;
        upgrade[PreferenceKey::notchDragEnabled] = false;
        upgrade.erase(PreferenceKey::shelfRetractionEnabled);
        QTest::newRow("upgrade") << true << upgrade;
    }

    void registerDefaultsOnFirstRunAndUpgrade()
    {
        QFETCH(bool, upgrade);
        QFETCH(StoredValues, expected);

        auto preferences =
            upgrade ? makePreferences({{PreferenceKey::hasLaunchedApp, true}}) : makePreferences();
        preferences->registerDefaults();
        for (const auto& [key, value] : stored(*preferences)) {
            QVERIFY2(expected.contains(key), qPrintable(preferenceStoredName(key)));
            QCOMPARE(value.typeId(), expected.at(key).typeId());
            QCOMPARE(value, expected.at(key));
        }
        QCOMPARE(stored(*preferences).size(), expected.size());
    }

    void registerDefaultsFollowsWhatIsStored_data()
    {
        QTest::addColumn<PreferenceKey>("storedKey");
        QTest::addColumn<QVariant>("storedValue");
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("expected");
        using K = PreferenceKey;

        QTest::newRow("hidden status item shows in dock")
            << K::prefersHiddenStatusItem << QVariant(true) << K::prefersShowInDock << QVariant(true);
        QTest::newRow("hidden status item of wrong type")
            << K::prefersHiddenStatusItem << QVariant(1) << K::prefersShowInDock << QVariant(false);
        // A wrongly typed value is overwritten; each type's strictness is checked above.
        QTest::newRow("int as text") << K::doubleClickAction << QVariant(u"0"_s) << K::doubleClickAction
                                     << QVariant(0);
        QTest::newRow("list as text") << K::fileOperationMainMenuIdentifiers << QVariant(u"file_op_copy"_s)
                                      << K::fileOperationMainMenuIdentifiers
                                      << QVariant(QStringList{u"file_op_copy"_s, u"file_op_move"_s});
        // A launch flag of the wrong type is no launch: the first-run values apply.
        QTest::newRow("launch flag as text: agreement")
            << K::hasLaunchedApp << QVariant(u"true"_s) << K::cloudRequiresAgreement << QVariant(true);
        QTest::newRow("launch flag as text: retraction")
            << K::hasLaunchedApp << QVariant(u"true"_s) << K::shelfRetractionEnabled << QVariant(false);
    }

    void registerDefaultsFollowsWhatIsStored()
    {
        QFETCH(PreferenceKey, storedKey);
        QFETCH(QVariant, storedValue);
        QFETCH(PreferenceKey, key);
        QFETCH(QVariant, expected);

        auto preferences = makePreferences({{storedKey, storedValue}});
        preferences->registerDefaults();
        const std::optional<QVariant> value = preferences->storage().value(key);
        QVERIFY(value);
        QCOMPARE(value->typeId(), expected.typeId());
        QCOMPARE(*value, expected);
    }

    void laterStartsLeaveStoredValuesAlone()
    {
        auto preferences = makePreferences();
        preferences->registerDefaults();
        preferences->setValue(PreferenceKeys::hasLaunchedApp, true);
        QSignalSpy changes(preferences.get(), &Preferences::changed);
        // The second start finds the defaults; before the third the user changed every one of them: to
        // the other bool, another number or text, an empty list.
        for (const bool userChanged : {false, true}) {
            for (const auto& [key, value] : userChanged ? firstRunDefaults() : StoredValues()) {
                switch (value.typeId()) {
                case QMetaType::Bool:
                    preferences->storage().setValue(key, !value.toBool());
                    break;
                case QMetaType::Int:
                    preferences->storage().setValue(key, value.toInt() + 1);
                    break;
                case QMetaType::QString:
                    preferences->storage().setValue(key, QString(value.toString() + u'2'));
                    break;
                default:
                    preferences->storage().setValue(key, QStringList());
                }
            }
            const StoredValues before = stored(*preferences);
            preferences->registerDefaults();
            QCOMPARE(stored(*preferences), before);
            QCOMPARE(changes.count(), 0);
        }
    }

    void keyboardActionDefaultsRunLast()
    {
        auto preferences = makePreferences();
        int calls = 0;
        std::size_t storedWhenCalled = 0;
        preferences->registerDefaults([&](Preferences& given) {
            ++calls;
            storedWhenCalled = stored(given).size();
            given.setValue(PreferenceKeys::registeredKeyboardActionIdentifiers, {u"custom_pin"_s});
        });
        QCOMPARE(calls, 1);
        QCOMPARE(storedWhenCalled, firstRunDefaults().size());
        QCOMPARE(preferences->value(PreferenceKeys::registeredKeyboardActionIdentifiers, {}),
                 QStringList{u"custom_pin"_s});
    }

    void writesAnnounceTheKey()
    {
        auto preferences = makePreferences({{PreferenceKey::numberOfDrops, 3}});
        QSignalSpy changes(preferences.get(), &Preferences::changed);
        auto& drops = preferences->preference(PreferenceKeys::numberOfDrops);
        QCOMPARE(&preferences->preference(PreferenceKeys::numberOfDrops), &drops);
        QCOMPARE(preferences->value(PreferenceKeys::numberOfDrops, 0), 3);
        QCOMPARE(changes.count(), 0);

        drops.setValue(4);
        preferences->removeValue(PreferenceKeys::numberOfDrops);
        preferences->setValue(PreferenceKeys::launchAtLogin, true);
        QCOMPARE(changes.count(), 3);
        QCOMPARE(changes.at(0).at(0).value<PreferenceKey>(), PreferenceKey::numberOfDrops);
        QCOMPARE(changes.at(1).at(0).value<PreferenceKey>(), PreferenceKey::numberOfDrops);
        QCOMPARE(changes.at(2).at(0).value<PreferenceKey>(), PreferenceKey::launchAtLogin);
        QCOMPARE(drops.storedValue(), std::nullopt);
    }

    void settingsItemStoredForms_data()
    {
        QTest::addColumn<SettingsItemReader>("read");
        QTest::addColumn<QVariantList>("forms"); // in case order
        QTest::addColumn<QVariantList>("unknown");

        using S = SettingsItem;
        QTest::newRow("shake") << reader(&S::shakeSensitivity) << QVariantList{0, 1, 2}
                               << QVariantList{-1, 3};
        QTest::newRow("double click")
            << reader(&S::doubleClick) << QVariantList{0, 1, 2, 3} << QVariantList{4};
        QTest::newRow("highlight") << reader(&S::notchDragHighlightBehavior) << QVariantList{0, 1, 2}
                                   << QVariantList{3};
        QTest::newRow("modifier") << reader(&S::shelfTriggerModifierKey)
                                  << QVariantList{u"shift"_s, u"command"_s, u"control"_s}
                                  << QVariantList{u"Shift"_s, u"option"_s};
        QTest::newRow("location") << reader(&S::shelfLocation)
                                  << QVariantList{u"topRight"_s,   u"topLeft"_s, u"bottomRight"_s,
                                                  u"bottomLeft"_s, u"center"_s,  u"cursor"_s}
                                  << QVariantList{QString(), u"topright"_s};
        QTest::newRow("edge action") << reader(&S::doubleClickEdgeAction)
                                     << QVariantList{u"dock"_s, u"retract"_s, u"none"_s}
                                     << QVariantList{u"close"_s};
        QTest::newRow("menu bar icon")
            << reader(&S::menuBarIcon) << QVariantList{u"traditional"_s, u"document"_s, u"documentTilted"_s}
            << QVariantList{u"tilted"_s};
    }

    void settingsItemStoredForms()
    {
        QFETCH(SettingsItemReader, read);
        QFETCH(QVariantList, forms);
        QFETCH(QVariantList, unknown);
        for (int i = 0; i < forms.size(); ++i) {
            QCOMPARE(read(forms.at(i)), std::optional(std::pair{i, forms.at(i)}));
        }
        for (const QVariant& form : unknown) {
            QCOMPARE(read(form), std::nullopt);
        }
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "TestPreferences.moc"
