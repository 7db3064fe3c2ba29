// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Preferences/MemoryPreferenceStorage.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"
#include "support/TestSupport.h"

#include <QSet>
#include <QSignalSpy>
#include <QTest>

using namespace Vantrope;
using namespace Qt::StringLiterals;

using StoredValues = std::map<PreferenceKey, QVariant>;
Q_DECLARE_METATYPE(StoredValues)
Q_DECLARE_METATYPE(std::optional<KeyCombination>)
Q_DECLARE_METATYPE(std::optional<Vantrope::PreferenceKey>)

namespace {

using K = PreferenceKey;

// What the program's typed reads of `key` give, in the stored form: storedValue() and value().
struct TypedRead {
    std::optional<QVariant> stored;
    QVariant value; // null for a type that has no empty value to fall back to
};

TypedRead typedRead(const Preferences& preferences, PreferenceKey key)
{
    return visitPreferenceKey(key, [&]<typename T>(TypedPreferenceKey<T> typed) {
        using Traits = PreferenceValueTraits<T>;
        TypedRead read;
        if (const std::optional<T> stored = preferences.storedValue(typed)) {
            read.stored = Traits::toVariant(*stored);
        }
        if constexpr (std::default_initializable<T>) {
            read.value = Traits::toVariant(preferences.value(typed));
        }
        return read;
    });
}

// What a read falls back to: the table's default, else the type's empty value.
QVariant readDefault(PreferenceKey key)
{
    const QVariant tableDefault = PreferenceDefinition::of(key).defaultValue;
    if (!tableDefault.isNull()) {
        return tableDefault;
    }
    return visitPreferenceKey(key, []<typename T>(TypedPreferenceKey<T>) {
        if constexpr (std::default_initializable<T>) {
            return PreferenceValueTraits<T>::toVariant(T{});
        } else {
            return QVariant();
        }
    });
}

std::unique_ptr<Preferences> makePreferences(StoredValues values = {})
{
    return std::make_unique<Preferences>(std::make_unique<MemoryPreferenceStorage>(std::move(values)));
}

const StoredValues& stored(const Preferences& preferences)
{
    return static_cast<const MemoryPreferenceStorage&>(preferences.storage()).storage();
}

// What the first start writes into an empty store, or into one of a user who upgrades.
StoredValues firstStartWrites(bool upgrade)
{
    StoredValues expected;
    for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
        if (definition.defaultUse == PreferenceDefaultUse::firstRun) {
            expected[definition.key] = definition.defaultValue;
        }
    }
    expected[K::prefersShowInTaskbar] = false; // as prefersHiddenStatusItem, unset here
    expected[K::notchDragEnabled] = !upgrade;
    if (upgrade) {
        expected[K::hasLaunchedApp] = true;
    } else {
        expected[K::shelfRetractionEnabled] = false;
    }
    return expected;
}

QVariantMap combination(int key, int modifiers)
{
    return {{u"keyCode"_s, key}, {u"modifiers"_s, modifiers}};
}

std::optional<KeyCombination> combinationOf(int key, int modifiers)
{
    const auto made = KeyCombination::from(key, modifiers);
    Q_ASSERT(made);
    return made;
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

    void everyKeyIsFoundByItsStoredName()
    {
        QCOMPARE(PreferenceDefinition::all().size(), preferenceKeyCount);
        for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
            // Two keys of one name would find the first twice.
            QCOMPARE(PreferenceDefinition::find(definition.storedName), &definition);
            QCOMPARE(&PreferenceDefinition::of(definition.key), &definition);
            QCOMPARE(definition.type, preferenceValueType(definition.key));
        }
    }

    void lookUpByStoredName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<std::optional<PreferenceKey>>("key");

        // Stored values must survive, so the odd names stay as existing files have them.
        QTest::newRow("named unlike its key") << u"IsFirstLaunch"_s << std::optional(K::hasLaunchedApp);
        QTest::newRow("misspelt") << u"DidPerformanceInstantActionMigration"_s
                                  << std::optional(K::didPerformInstantActionMigration);
        QTest::newRow("lower case") << u"didConfigureDefaultShowHideHotKey"_s
                                    << std::optional(K::didConfigureDefaultShowHideHotKey);
        QTest::newRow("case differs") << u"isFirstLaunch"_s << std::optional<PreferenceKey>();
        QTest::newRow("the enumerator") << u"hasLaunchedApp"_s << std::optional<PreferenceKey>();
        QTest::newRow("corrected spelling")
            << u"DidPerformInstantActionMigration"_s << std::optional<PreferenceKey>();
        QTest::newRow("empty") << QString() << std::optional<PreferenceKey>();
        // Keys with no use on Linux are gone; files of older versions may still hold them.
        for (const char* dropped : {"CloudKitDisabled", "RatingPromptHistory", "LastRatingPromptDate",
                                    "CloudRequiresAgreement", "CloudLinkType"}) {
            QTest::newRow(dropped) << QString::fromLatin1(dropped) << std::optional<PreferenceKey>();
        }
    }

    void lookUpByStoredName()
    {
        QFETCH(QString, name);
        QFETCH(std::optional<PreferenceKey>, key);
        const PreferenceDefinition* found = PreferenceDefinition::find(name);
        QCOMPARE(found ? std::optional(found->key) : std::nullopt, key);
    }

    void labelsNameTheKeysAPersonChanges()
    {
        QSet<QByteArray> labelKeys;
        for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
            const QString name = definition.storedName.toString();
            if (definition.isInternal()) {
                QVERIFY2(definition.localizedLabel().isEmpty(), qPrintable(name));
                continue;
            }
            // No translation is loaded, so the English text shows.
            QCOMPARE(definition.localizedLabel(), QString::fromUtf8(definition.label.english));
            QVERIFY2(!definition.localizedLabel().isEmpty(), qPrintable(name));
            const QByteArray labelKey(definition.label.key);
            QVERIFY2(labelKey.startsWith("settings."), qPrintable(name));
            QVERIFY2(!labelKeys.contains(labelKey), labelKey.constData());
            labelKeys.insert(labelKey);
        }
    }

    void nothingStoredReadsEveryDefault()
    {
        const auto preferences = makePreferences();
        for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
            const TypedRead read = typedRead(*preferences, definition.key);
            QVERIFY2(!read.stored, qPrintable(definition.storedName.toString()));
            QCOMPARE(read.value, readDefault(definition.key));
        }
        // A default is never written by reading it.
        QVERIFY(stored(*preferences).empty());
    }

    void valuesOfTheWrongTypeReadAsAbsent_data()
    {
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QVariant>("expected"); // null: reads as absent

        const QVariant absent;
        const QDateTime date(QDate(2024, 2, 29), QTime(23, 59, 59, 999), Qt::UTC);
        const QStringList apps{u"org.example.one"_s, u"org.example.two"_s};
        const QVariantMap space = combination(Qt::Key_Space, Qt::ControlModifier | Qt::ShiftModifier);

        QTest::newRow("bool") << K::launchAtLogin << QVariant(true) << QVariant(true);
        QTest::newRow("bool from int") << K::launchAtLogin << QVariant(1) << absent;
        QTest::newRow("int from long") << K::numberOfDrops << QVariant(qlonglong(-5)) << QVariant(-5);
        QTest::newRow("int from unsigned") << K::numberOfDrops << QVariant(7u) << QVariant(7);
        QTest::newRow("int from text") << K::numberOfDrops << QVariant(u"5"_s) << absent;
        QTest::newRow("int from fraction") << K::numberOfDrops << QVariant(5.0) << absent;
        QTest::newRow("int too large") << K::numberOfDrops << QVariant(qlonglong(1) << 40) << absent;
        QTest::newRow("string from bytes") << K::amazonAccessControl << QVariant(QByteArray("x")) << absent;
        QTest::newRow("list from variants")
            << K::ignoredApplication << QVariant(QVariantList{apps[0], apps[1]}) << QVariant(apps);
        QTest::newRow("empty list") << K::ignoredApplication << QVariant(QVariantList())
                                    << QVariant(QStringList());
        QTest::newRow("list from text") << K::ignoredApplication << QVariant(apps[0]) << absent;
        QTest::newRow("list with a number")
            << K::ignoredApplication << QVariant(QVariantList{apps[0], 1}) << absent;
        QTest::newRow("combination") << K::showHideHotKeyCombo << QVariant(space) << QVariant(space);
        QTest::newRow("combination from list")
            << K::showHideHotKeyCombo << QVariant(QVariantList{space}) << absent;
        QTest::newRow("malformed combination")
            << K::showHideClipboardHotKeyCombo << QVariant(combination(Qt::Key_Space, 768)) << absent;
        QTest::newRow("combinations")
            << K::registeredKeyboardActionCombinations << QVariant(QVariantMap{{u"newShelf"_s, space}})
            << QVariant(QVariantMap{{u"newShelf"_s, space}});
        // One broken binding costs that action its keys, not the others theirs.
        QTest::newRow("combinations with malformed ones")
            << K::registeredKeyboardActionCombinations
            << QVariant(QVariantMap{{u"newShelf"_s, space},
                                    {u"closeAllShelves"_s, 3},
                                    {u"openRecentShelf"_s, QVariantMap{{u"keyCode"_s, u"x"_s}}}})
            << QVariant(QVariantMap{{u"newShelf"_s, space}});
        QTest::newRow("combinations from list")
            << K::registeredKeyboardActionCombinations << QVariant(QVariantList{space}) << absent;
        QTest::newRow("date") << K::lastTemporaryDataSanitationDate << QVariant(date) << QVariant(date);
        QTest::newRow("date from text")
            << K::lastTemporaryDataSanitationDate << QVariant(date.toString(Qt::ISODate)) << absent;
        QTest::newRow("invalid date")
            << K::lastTemporaryDataSanitationDate << QVariant(QDateTime()) << absent;
        QTest::newRow("data from text") << K::bucketDestinationPath << QVariant(u"z"_s) << absent;
        // The default applies to a value of the wrong type just as to none at all.
        QTest::newRow("default over a number") << K::defaultShelfLocation << QVariant(1) << absent;
    }

    void valuesOfTheWrongTypeReadAsAbsent()
    {
        QFETCH(PreferenceKey, key);
        QFETCH(QVariant, stored);
        QFETCH(QVariant, expected);

        const auto preferences = makePreferences({{key, stored}});
        const TypedRead read = typedRead(*preferences, key);
        if (expected.isNull()) {
            QCOMPARE(read.stored, std::nullopt);
            QCOMPARE(read.value, readDefault(key));
            // Reading leaves it alone: a default is never written.
            QCOMPARE(preferences->storage().value(key), std::optional(stored));
        } else {
            QVERIFY(read.stored);
            QCOMPARE(read.stored->typeId(), expected.typeId());
            QCOMPARE(*read.stored, expected);
        }
    }

    void keyCombinationFromDictionary_data()
    {
        QTest::addColumn<QVariant>("dictionary");
        QTest::addColumn<std::optional<KeyCombination>>("expected");

        const std::optional<KeyCombination> absent;
        const int ctrlAlt = Qt::ControlModifier | Qt::AltModifier;
        QTest::newRow("Ctrl+Alt+Space")
            << QVariant(combination(Qt::Key_Space, ctrlAlt)) << combinationOf(Qt::Key_Space, ctrlAlt);
        QTest::newRow("function key alone")
            << QVariant(combination(Qt::Key_F13, 0)) << combinationOf(Qt::Key_F13, 0);
        QTest::newRow("letter beyond Latin-1")
            << QVariant(combination(0x416, Qt::MetaModifier)) << combinationOf(0x416, Qt::MetaModifier);
        QTest::newRow("other members are ignored")
            << QVariant(QVariantMap{{u"keyCode"_s, int(Qt::Key_A)},
                                    {u"modifiers"_s, int(Qt::ShiftModifier)},
                                    {u"title"_s, u"Shift+A"_s}})
            << combinationOf(Qt::Key_A, Qt::ShiftModifier);

        QTest::newRow("not a dictionary") << QVariant(QVariantList{int(Qt::Key_A), 0}) << absent;
        QTest::newRow("empty") << QVariant(QVariantMap()) << absent;
        QTest::newRow("no modifiers") << QVariant(QVariantMap{{u"keyCode"_s, int(Qt::Key_A)}}) << absent;
        QTest::newRow("no key") << QVariant(QVariantMap{{u"modifiers"_s, 0}}) << absent;
        QTest::newRow("key as text") << QVariant(QVariantMap{{u"keyCode"_s, u"65"_s}, {u"modifiers"_s, 0}})
                                     << absent;
        QTest::newRow("modifiers as bool")
            << QVariant(QVariantMap{{u"keyCode"_s, int(Qt::Key_A)}, {u"modifiers"_s, true}}) << absent;
        QTest::newRow("no key code") << QVariant(combination(0, int(Qt::ControlModifier))) << absent;
        QTest::newRow("below space") << QVariant(combination(0x1b, 0)) << absent;
        QTest::newRow("unknown key") << QVariant(combination(Qt::Key_unknown, 0)) << absent;
        QTest::newRow("beyond Unicode") << QVariant(combination(0x110000, 0)) << absent;
        QTest::newRow("key carrying modifiers")
            << QVariant(combination(int(Qt::Key_A) | int(Qt::ShiftModifier), 0)) << absent;
        QTest::newRow("modifiers that are no Qt flags")
            << QVariant(combination(Qt::Key_Space, 768)) << absent;
        QTest::newRow("modifiers with the sign bit")
            << QVariant(combination(Qt::Key_Space, int(0x80000000u | Qt::ShiftModifier))) << absent;
    }

    void keyCombinationFromDictionary()
    {
        QFETCH(QVariant, dictionary);
        QFETCH(std::optional<KeyCombination>, expected);

        const std::optional<KeyCombination> read = KeyCombination::fromDictionary(dictionary);
        QCOMPARE(read, expected);
        if (expected) {
            // Written back in the one stored form: two ints, nothing else.
            const QVariantMap written = read->toDictionary();
            QCOMPARE(written, combination(expected->key(), int(expected->modifiers().toInt())));
            QCOMPARE(written.value(u"keyCode"_s).typeId(), QMetaType::Int);
            QCOMPARE(written.value(u"modifiers"_s).typeId(), QMetaType::Int);
            QCOMPARE(KeyCombination::fromDictionary(written), expected);
        }
    }

    void registerDefaultsOnFirstRunAndUpgrade_data()
    {
        QTest::addColumn<bool>("upgrade");
        QTest::newRow("first run") << false;
        // hasLaunchedApp is set: what new users get stays off, and retraction stays unset.
        QTest::newRow("upgrade") << true;
    }

    void registerDefaultsOnFirstRunAndUpgrade()
    {
        QFETCH(bool, upgrade);
        const StoredValues expected = firstStartWrites(upgrade);

        auto preferences = upgrade ? makePreferences({{K::hasLaunchedApp, true}}) : makePreferences();
        preferences->registerDefaults();
        for (const auto& [key, value] : stored(*preferences)) {
            const QString name = PreferenceDefinition::of(key).storedName.toString();
            QVERIFY2(expected.contains(key), qPrintable(name));
            QCOMPARE(value.typeId(), expected.at(key).typeId());
            QCOMPARE(value, expected.at(key));
            // What is written reads back through the key's type.
            QVERIFY2(typedRead(*preferences, key).stored, qPrintable(name));
        }
        QCOMPARE(stored(*preferences).size(), expected.size());
        if (!upgrade) {
            // Every key the table says the first start writes, it writes.
            for (const PreferenceDefinition& definition : PreferenceDefinition::all()) {
                QVERIFY2(definition.defaultUse == PreferenceDefaultUse::atRead ||
                             stored(*preferences).contains(definition.key),
                         qPrintable(definition.storedName.toString()));
            }
        }
    }

    void registerDefaultsFollowsWhatIsStored_data()
    {
        QTest::addColumn<PreferenceKey>("storedKey");
        QTest::addColumn<QVariant>("storedValue");
        QTest::addColumn<PreferenceKey>("key");
        QTest::addColumn<QVariant>("expected");

        QTest::newRow("hidden tray icon shows in taskbar")
            << K::prefersHiddenStatusItem << QVariant(true) << K::prefersShowInTaskbar << QVariant(true);
        QTest::newRow("hidden tray icon of wrong type")
            << K::prefersHiddenStatusItem << QVariant(1) << K::prefersShowInTaskbar << QVariant(false);
        // A wrongly typed value is overwritten; each type's strictness is checked above.
        QTest::newRow("int as text") << K::doubleClickAction << QVariant(u"0"_s) << K::doubleClickAction
                                     << QVariant(0);
        QTest::newRow("list as text") << K::fileOperationMainMenuIdentifiers << QVariant(u"file_op_copy"_s)
                                      << K::fileOperationMainMenuIdentifiers
                                      << QVariant(QStringList{u"file_op_copy"_s, u"file_op_move"_s});
        // A launch flag of the wrong type is no launch: the first-run values apply.
        QTest::newRow("launch flag as text: top drop zone")
            << K::hasLaunchedApp << QVariant(u"true"_s) << K::notchDragEnabled << QVariant(true);
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
        const StoredValues written = stored(*preferences);
        QSignalSpy changes(preferences.get(), &Preferences::changed);
        // The second start finds the defaults; before the third the user changed every one of them: to
        // the other bool, another number or text, an empty list.
        for (const bool userChanged : {false, true}) {
            for (const auto& [key, value] : userChanged ? written : StoredValues()) {
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
            given.setValue(PreferenceKeys::registeredKeyboardActionIdentifiers, {u"newShelf"_s});
        });
        QCOMPARE(calls, 1);
        QCOMPARE(storedWhenCalled, firstStartWrites(false).size());
        QCOMPARE(preferences->value(PreferenceKeys::registeredKeyboardActionIdentifiers),
                 QStringList{u"newShelf"_s});
    }

    void writesAnnounceTheKey()
    {
        auto preferences = makePreferences({{K::numberOfDrops, 3}});
        QSignalSpy changes(preferences.get(), &Preferences::changed);
        auto& drops = preferences->preference(PreferenceKeys::numberOfDrops);
        QCOMPARE(&preferences->preference(PreferenceKeys::numberOfDrops), &drops);
        QCOMPARE(preferences->value(PreferenceKeys::numberOfDrops), 3);
        QCOMPARE(changes.count(), 0);

        drops.setValue(4);
        preferences->removeValue(PreferenceKeys::numberOfDrops);
        preferences->setValue(PreferenceKeys::showHideHotKeyCombo, *combinationOf(Qt::Key_F1, 0));
        QCOMPARE(changes.count(), 3);
        QCOMPARE(changes.at(0).at(0).value<PreferenceKey>(), K::numberOfDrops);
        QCOMPARE(changes.at(1).at(0).value<PreferenceKey>(), K::numberOfDrops);
        QCOMPARE(changes.at(2).at(0).value<PreferenceKey>(), K::showHideHotKeyCombo);
        QCOMPARE(drops.storedValue(), std::nullopt);
        QCOMPARE(preferences->storage().value(K::showHideHotKeyCombo),
                 std::optional(QVariant(combination(Qt::Key_F1, 0))));
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
