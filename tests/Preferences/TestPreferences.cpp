#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"
#include "support/TestSupport.h"

#include <QSignalSpy>
#include <QTest>
#include <set>

using namespace Vantrope;

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
        return QStringLiteral("fallback");
    } else if constexpr (std::is_same_v<T, QStringList>) {
        return {QStringLiteral("a")};
    } else if constexpr (std::is_same_v<T, QDateTime>) {
        return QDateTime(QDate(2021, 6, 1), QTime(8, 30), Qt::UTC);
    } else if constexpr (std::is_same_v<T, QByteArray>) {
        return QByteArray("\x00\xff", 2);
    } else {
        return {{QStringLiteral("k"), QVariantMap{{QStringLiteral("keyCode"), 7}}}};
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
        {PreferenceKey::shelfTriggerModifierKey, QStringLiteral("shift")},
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
        {PreferenceKey::preferredMenuBarIconIdentifier, QStringLiteral("traditional")},
        {PreferenceKey::fileOperationMainMenuIdentifiers,
         QStringList{QStringLiteral("file_op_copy"), QStringLiteral("file_op_move")}},
    };
}

// Turns a stored form into a settings item and back: {case index, stored form}, or nothing.
std::optional<std::pair<int, QVariant>> settingsItem(const QString& kind, const QVariant& form)
{
    const auto back = [](auto item) -> std::optional<std::pair<int, QVariant>> {
        if (!item) {
            return std::nullopt;
        }
        return std::pair{static_cast<int>(*item), QVariant(SettingsItem::storedValue(*item))};
    };
    const int index = form.typeId() == QMetaType::Int ? form.toInt() : -100;
    const QString text = form.toString();
    if (kind == u"ShakeSensitivity") {
        return back(SettingsItem::shakeSensitivity(index));
    }
    if (kind == u"DoubleClick") {
        return back(SettingsItem::doubleClick(index));
    }
    if (kind == u"NotchDragHighlightBehavior") {
        return back(SettingsItem::notchDragHighlightBehavior(index));
    }
    if (kind == u"ShelfTriggerModifierKey") {
        return back(SettingsItem::shelfTriggerModifierKey(text));
    }
    if (kind == u"ShelfLocation") {
        return back(SettingsItem::shelfLocation(text));
    }
    if (kind == u"DoubleClickEdgeAction") {
        return back(SettingsItem::doubleClickEdgeAction(text));
    }
    return back(SettingsItem::menuBarIcon(text));
}

} // namespace

class TestPreferences final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { Test::isolateStandardPaths(); }

    void storedNames()
    {
        std::set<QString> names;
        for (const PreferenceKey key : allPreferenceKeys()) {
            const QString name = preferenceStoredName(key);
            QVERIFY2(names.insert(name).second, qPrintable(name));
            QCOMPARE(preferenceKeyFromStoredName(name), std::optional(key));
        }
        // Stored values must survive, so these odd names stay as existing files have them.
        QCOMPARE(preferenceStoredName(PreferenceKey::hasLaunchedApp), QStringLiteral("IsFirstLaunch"));
        QCOMPARE(preferenceStoredName(PreferenceKey::didPerformInstantActionMigration),
                 QStringLiteral("DidPerformanceInstantActionMigration"));
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
        const QStringList apps{QStringLiteral("org.example.one"), QStringLiteral("org.example.two")};
        const QVariantMap combo{{QStringLiteral("keyCode"), 49}};
        const QVariantMap combos{{QStringLiteral("custom_pin"), combo}};
        using K = PreferenceKey;

        QTest::newRow("bool") << K::launchAtLogin << QVariant(true) << QVariant(true);
        QTest::newRow("bool from int") << K::launchAtLogin << QVariant(1) << absent;
        QTest::newRow("bool from text") << K::launchAtLogin << QVariant(QStringLiteral("true")) << absent;
        QTest::newRow("int from long") << K::numberOfDrops << QVariant(qlonglong(-5)) << QVariant(-5);
        QTest::newRow("int from unsigned") << K::numberOfDrops << QVariant(7u) << QVariant(7);
        QTest::newRow("int from text") << K::numberOfDrops << QVariant(QStringLiteral("5")) << absent;
        QTest::newRow("int from bool") << K::numberOfDrops << QVariant(true) << absent;
        QTest::newRow("int from fraction") << K::numberOfDrops << QVariant(2.5) << absent;
        QTest::newRow("int too large") << K::numberOfDrops << QVariant(qlonglong(1) << 40) << absent;
        QTest::newRow("string from bytes") << K::cloudLinkType << QVariant(QByteArray("x")) << absent;
        QTest::newRow("string from list")
            << K::cloudLinkType << QVariant(QStringList{QStringLiteral("x")}) << absent;
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
            << K::registeredKeyboardActionCombinations << QVariant(QVariantMap{{QStringLiteral("x"), 3}})
            << absent;
        QTest::newRow("date") << K::lastRatingPromptDate << QVariant(date) << QVariant(date);
        QTest::newRow("date from text")
            << K::lastRatingPromptDate << QVariant(date.toString(Qt::ISODate)) << absent;
        QTest::newRow("invalid date") << K::lastRatingPromptDate << QVariant(QDateTime()) << absent;
        QTest::newRow("data from text")
            << K::bucketDestinationPath << QVariant(QStringLiteral("z")) << absent;
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
            QCOMPARE(preferences->storage().value(key), std::optional(stored)); // reading leaves it alone
        } else {
            QVERIFY(read.stored);
            QCOMPARE(read.stored->typeId(), expected.typeId());
            QCOMPARE(*read.stored, expected);
        }
    }

    void emptyStorageGivesEveryFallback()
    {
        const auto preferences = makePreferences();
        for (const PreferenceKey key : allPreferenceKeys()) {
            const TypedRead read = typedRead(*preferences, key);
            QVERIFY(!read.stored);
            QVERIFY2(read.withFallback == read.fallback, qPrintable(preferenceStoredName(key)));
        }
        QVERIFY(stored(*preferences).empty()); // a fallback is never written
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
        QTest::newRow("int as text") << K::doubleClickAction << QVariant(QStringLiteral("0"))
                                     << K::doubleClickAction << QVariant(0);
        QTest::newRow("int as fraction")
            << K::lastOutlineDisplayMode << QVariant(2.5) << K::lastOutlineDisplayMode << QVariant(0);
        QTest::newRow("int as bool") << K::notchDragHighlightBehavior << QVariant(true)
                                     << K::notchDragHighlightBehavior << QVariant(0);
        QTest::newRow("string as int") << K::shelfTriggerModifierKey << QVariant(5)
                                       << K::shelfTriggerModifierKey << QVariant(QStringLiteral("shift"));
        QTest::newRow("string as list")
            << K::preferredMenuBarIconIdentifier << QVariant(QStringList{QStringLiteral("document")})
            << K::preferredMenuBarIconIdentifier << QVariant(QStringLiteral("traditional"));
        QTest::newRow("bool as text") << K::shelfHotkeysEnabled << QVariant(QStringLiteral("yes"))
                                      << K::shelfHotkeysEnabled << QVariant(true);
        QTest::newRow("list as text")
            << K::fileOperationMainMenuIdentifiers << QVariant(QStringLiteral("file_op_copy"))
            << K::fileOperationMainMenuIdentifiers
            << QVariant(QStringList{QStringLiteral("file_op_copy"), QStringLiteral("file_op_move")});
        // A launch flag of the wrong type is no launch: the first-run values apply.
        QTest::newRow("launch flag as text: agreement")
            << K::hasLaunchedApp << QVariant(QStringLiteral("true")) << K::cloudRequiresAgreement
            << QVariant(true);
        QTest::newRow("launch flag as int: notch")
            << K::hasLaunchedApp << QVariant(1) << K::notchDragEnabled << QVariant(true);
        QTest::newRow("launch flag as text: retraction")
            << K::hasLaunchedApp << QVariant(QStringLiteral("true")) << K::shelfRetractionEnabled
            << QVariant(false);
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

    void secondStartLeavesStoredValuesAlone_data()
    {
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("userValue");
        using K = PreferenceKey;

        QTest::newRow("nothing changed") << K::hasLaunchedApp << QVariant(true);
        QTest::newRow("dock") << K::prefersShowInDock << QVariant(true);
        QTest::newRow("double click") << K::doubleClickAction << QVariant(3);
        QTest::newRow("modifier") << K::shelfTriggerModifierKey << QVariant(QStringLiteral("control"));
        QTest::newRow("modifier off") << K::shelfTriggerModifierKeyEnabled << QVariant(false);
        QTest::newRow("migrated") << K::didMigrateTemporaryDirectoryStructure << QVariant(true);
        QTest::newRow("plain text") << K::draggableTextForcesPlainText << QVariant(true);
        QTest::newRow("outline") << K::lastOutlineDisplayMode << QVariant(1);
        QTest::newRow("hot keys") << K::shelfHotkeysEnabled << QVariant(false);
        QTest::newRow("instant actions") << K::instantActionsEnabled << QVariant(false);
        QTest::newRow("highlight") << K::notchDragHighlightBehavior << QVariant(2);
        QTest::newRow("retraction") << K::shelfRetractionEnabled << QVariant(true);
        QTest::newRow("agreement") << K::cloudRequiresAgreement << QVariant(false);
        QTest::newRow("notch") << K::notchDragEnabled << QVariant(false);
        QTest::newRow("screenshot message") << K::userScreenshotShowConfirmationMessage << QVariant(false);
        QTest::newRow("filter migration") << K::didPerformWatchedFoldersFilterMigration << QVariant(true);
        QTest::newRow("menu bar icon")
            << K::preferredMenuBarIconIdentifier << QVariant(QStringLiteral("document"));
        QTest::newRow("no file operations") << K::fileOperationMainMenuIdentifiers << QVariant(QStringList());
    }

    void secondStartLeavesStoredValuesAlone()
    {
        QFETCH(PreferenceKey, key);
        QFETCH(QVariant, userValue);

        auto preferences = makePreferences();
        preferences->registerDefaults();
        preferences->setValue(PreferenceKeys::hasLaunchedApp, true);
        preferences->storage().setValue(key, userValue);
        const StoredValues before = stored(*preferences);

        QSignalSpy changes(preferences.get(), &Preferences::changed);
        preferences->registerDefaults();
        QCOMPARE(stored(*preferences), before);
        QCOMPARE(changes.count(), 0);
    }

    void removedNotchDragFollowsLaunchHistory_data()
    {
        QTest::addColumn<bool>("hasLaunched");
        QTest::newRow("upgraded user") << true;
        QTest::newRow("new user") << false;
    }

    void removedNotchDragFollowsLaunchHistory()
    {
        QFETCH(bool, hasLaunched);
        auto preferences = makePreferences({{PreferenceKey::notchDragEnabled, true}});
        if (hasLaunched) {
            preferences->setValue(PreferenceKeys::hasLaunchedApp, true);
        }
        preferences->removeValue(PreferenceKeys::notchDragEnabled);
        QCOMPARE(preferences->value(PreferenceKeys::notchDragEnabled, false), false);
        preferences->registerDefaults();
        QCOMPARE(preferences->storedValue(PreferenceKeys::notchDragEnabled), std::optional(!hasLaunched));
    }

    void keyboardActionDefaultsRunLast()
    {
        auto preferences = makePreferences();
        int calls = 0;
        std::size_t storedWhenCalled = 0;
        preferences->registerDefaults([&](Preferences& given) {
            ++calls;
            storedWhenCalled = stored(given).size();
            given.setValue(PreferenceKeys::registeredKeyboardActionIdentifiers,
                           {QStringLiteral("custom_pin")});
        });
        QCOMPARE(calls, 1);
        QCOMPARE(storedWhenCalled, firstRunDefaults().size());
        QCOMPARE(preferences->value(PreferenceKeys::registeredKeyboardActionIdentifiers, {}),
                 QStringList{QStringLiteral("custom_pin")});
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
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QVariantList>("forms"); // in case order
        QTest::addColumn<QVariantList>("unknown");

        QTest::newRow("shake") << QStringLiteral("ShakeSensitivity") << QVariantList{0, 1, 2}
                               << QVariantList{-1, 3};
        QTest::newRow("double click")
            << QStringLiteral("DoubleClick") << QVariantList{0, 1, 2, 3} << QVariantList{4};
        QTest::newRow("highlight") << QStringLiteral("NotchDragHighlightBehavior") << QVariantList{0, 1, 2}
                                   << QVariantList{3};
        QTest::newRow("modifier") << QStringLiteral("ShelfTriggerModifierKey")
                                  << QVariantList{QStringLiteral("shift"), QStringLiteral("command"),
                                                  QStringLiteral("control")}
                                  << QVariantList{QStringLiteral("Shift"), QStringLiteral("option")};
        QTest::newRow("location") << QStringLiteral("ShelfLocation")
                                  << QVariantList{QStringLiteral("topRight"),    QStringLiteral("topLeft"),
                                                  QStringLiteral("bottomRight"), QStringLiteral("bottomLeft"),
                                                  QStringLiteral("center"),      QStringLiteral("cursor")}
                                  << QVariantList{QString(), QStringLiteral("topright")};
        QTest::newRow("edge action") << QStringLiteral("DoubleClickEdgeAction")
                                     << QVariantList{QStringLiteral("dock"), QStringLiteral("retract"),
                                                     QStringLiteral("none")}
                                     << QVariantList{QStringLiteral("close")};
        QTest::newRow("menu bar icon")
            << QStringLiteral("MenuBarIcon")
            << QVariantList{QStringLiteral("traditional"), QStringLiteral("document"),
                            QStringLiteral("documentTilted")}
            << QVariantList{QStringLiteral("tilted")};
    }

    void settingsItemStoredForms()
    {
        QFETCH(QString, kind);
        QFETCH(QVariantList, forms);
        QFETCH(QVariantList, unknown);
        for (int i = 0; i < forms.size(); ++i) {
            QCOMPARE(settingsItem(kind, forms.at(i)), std::optional(std::pair{i, forms.at(i)}));
        }
        for (const QVariant& form : unknown) {
            QCOMPARE(settingsItem(kind, form), std::nullopt);
        }
    }
};

QTEST_GUILESS_MAIN(TestPreferences)
#include "TestPreferences.moc"
