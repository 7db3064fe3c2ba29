#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVariantMap>
#include <span>

namespace Vantrope {

// A dictionary of string to any value, as hot key combinations are stored.
using PreferenceDictionary = QVariantMap;
// A dictionary of string to dictionary, as keyboard action combinations are stored.
using PreferenceDictionaryOfDictionaries = QMap<QString, QVariantMap>;

// Every preference in enum order: enumerator, stored name, value type. The stored names are what
// existing preference files hold, odd ones included, so they never change.
// clang-format off
#define VANTROPE_PREFERENCE_KEYS(X) \
    X(hasLaunchedApp, "IsFirstLaunch", bool) \
    X(hasSeenLaunchAtLoginDialog, "HasSeenLaunchAtLoginDialog", bool) \
    X(launchAtLogin, "LaunchAtLogin", bool) \
    X(numberOfDrops, "NumberOfDrops", int) \
    X(showHideHotKeyCombo, "ShowHideHotKeyCombo", PreferenceDictionary) \
    X(showHideClipboardHotKeyCombo, "ShowHideClipboardHotKeyCombo", PreferenceDictionary) \
    X(didConfigureDefaultShowHideHotKey, "didConfigureDefaultShowHideHotKey", bool) \
    X(copiesContentOnDrag, "CopiesContentOnDrag", bool) \
    X(ratingPromptHistory, "RatingPromptHistory", QStringList) \
    X(lastRatingPromptDate, "LastRatingPromptDate", QDateTime) \
    X(lastEligibleRatingPromptDate, "LastEligibleRatingPromptDate", QDateTime) \
    X(lastSeenWhatsNewVersion, "LastSeenWhatsNewVersion", QString) \
    X(prefersHiddenStatusItem, "PrefersHiddenStatusItem", bool) \
    X(fileLoggingEnabled, "FileLoggingEnabled", bool) \
    X(imgurServiceEnabled, "ImgurServiceEnabled", bool) \
    X(shakeGestureSensitivity, "ShakeGestureSensitivity", int) \
    X(shakeGestureDisabled, "ShakeGestureDisabled", bool) \
    X(ignoredApplication, "IgnoredApplications", QStringList) \
    X(customIgnoredApplicationPaths, "customIgnoredApplicationPaths", QStringList) \
    X(prefersSystemShareServiceSubmenu, "PrefersSystemShareServiceSubmenu", bool) \
    X(prefersShowInDock, "PrefersShowInDock", bool) \
    X(cloudLinkExpiration, "CloudLinkExpiration", QString) \
    X(cloudLinkType, "CloudLinkType", QString) \
    X(cloudPromptEnabled, "CloudPromptEnabled", bool) \
    X(cloudDisabled, "CloudDisabled", bool) \
    X(cloudPrefersLongLinks, "CloudPrefersLongLinks", bool) \
    X(cloudRequiresAgreement, "CloudRequiresAgreement", bool) \
    X(doubleClickAction, "DoubleClickAction", int) \
    X(defaultShelfLocation, "DefaultShelfLocation", QString) \
    X(shelfTriggerModifierKey, "ShelfTriggerModifierKey", QString) \
    X(shelfTriggerModifierKeyEnabled, "ShelfTriggerModifierKeyEnabled", bool) \
    X(didMigrateTemporaryDirectoryStructure, "DidMigrateTemporaryDirectoryStructure", bool) \
    X(draggableTextForcesPlainText, "DraggableTextForcesPlainText", bool) \
    X(lastOutlineDisplayMode, "LastOutlineDisplayMode", int) \
    X(bucketDestinationPath, "BucketDestinationPath", QByteArray) \
    X(amazonAccessControl, "AmazonAccessControl", QString) \
    X(amazonExpiration, "AmazonExpiration", int) \
    X(fileOperationMainMenuIdentifiers, "FileOperationMainMenuIdentifiers", QStringList) \
    X(shelfLabelsEnabled, "ShelfLabelsEnabled", bool) \
    X(shelfHotkeysEnabled, "ShelfHotkeysEnabled", bool) \
    X(recentActions, "RecentActions", QStringList) \
    X(instantActionsEnabled, "InstantActionsEnabled", bool) \
    X(instantActions, "InstantActions", QStringList) \
    X(notchDragEnabled, "NotchDragEnabled", bool) \
    X(notchDragHighlightBehavior, "NotchDragHighlightBehavior", int) \
    X(automaticWindowSnappingEnabled, "AutomaticWindowSnappingEnabled", bool) \
    X(alwaysCloseShelf, "AlwaysCloseShelf", bool) \
    X(keepShelfInSpace, "KeepShelfInSpace", bool) \
    X(shelfRetractionEnabled, "ShelfRetractionEnabled", bool) \
    X(didPerformRecentShelvesMigration, "DidPerformRecentShelvesMigration", bool) \
    X(didPerformThumbnailGeneratorMigration, "DidPerformThumbnailGeneratorMigration", bool) \
    X(didRemoveIndividualRecentShelf, "DidRemoveIndividualRecentShelf", bool) \
    X(recentShelfMenuViewCount, "RecentShelfMenuViewCount", int) \
    X(doubleClickEdgeAction, "DoubleClickEdgeAction", QString) \
    X(screenshotObservationEnabled, "ScreenshotObservationEnabled", bool) \
    X(screenshotObservationDistributionOption, "ScreenshotObservationDistributionOption", QString) \
    X(screenshotObservationSetupPerformed, "ScreenshotObservationSetupPerformed", bool) \
    X(lastTemporaryDataSanitationDate, "LastTemporaryDataSanitationDate", QDateTime) \
    X(registeredKeyboardActionIdentifiers, "RegisteredKeyboardActionIdentifiers", QStringList) \
    X(registeredKeyboardActionCombinations, "RegisteredKeyboardActionCombinations", PreferenceDictionaryOfDictionaries) \
    X(userScreenshotCopyToClipboard, "UserScreenshotCopyToClipboard", bool) \
    X(userScreenshotShowConfirmationMessage, "UserScreenshotShowConfirmationMessage", bool) \
    X(didPerformWatchedFoldersFilterMigration, "DidPerformWatchedFoldersFilterMigration", bool) \
    X(didPerformInstantActionMigration, "DidPerformanceInstantActionMigration", bool) \
    X(preferredMenuBarIconIdentifier, "PreferredMenuBarIconIdentifier", QString) \
    X(onlineFeaturesDisabled, "OnlineFeaturesDisabled", bool) \
    X(cloudKitDisabled, "CloudKitDisabled", bool)
// clang-format on

enum class PreferenceKey {
#define VANTROPE_PREFERENCE_ENUMERATOR(name, stored, type) name,
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_ENUMERATOR)
#undef VANTROPE_PREFERENCE_ENUMERATOR
};

enum class PreferenceValueType {
    Bool,
    Int,
    String,
    StringList,
    Dictionary,
    DictionaryOfDictionaries,
    Date,
    Data,
};

template<typename T> struct PreferenceValueTypeOf;
template<> struct PreferenceValueTypeOf<bool> {
    static constexpr PreferenceValueType value = PreferenceValueType::Bool;
};
template<> struct PreferenceValueTypeOf<int> {
    static constexpr PreferenceValueType value = PreferenceValueType::Int;
};
template<> struct PreferenceValueTypeOf<QString> {
    static constexpr PreferenceValueType value = PreferenceValueType::String;
};
template<> struct PreferenceValueTypeOf<QStringList> {
    static constexpr PreferenceValueType value = PreferenceValueType::StringList;
};
template<> struct PreferenceValueTypeOf<PreferenceDictionary> {
    static constexpr PreferenceValueType value = PreferenceValueType::Dictionary;
};
template<> struct PreferenceValueTypeOf<PreferenceDictionaryOfDictionaries> {
    static constexpr PreferenceValueType value = PreferenceValueType::DictionaryOfDictionaries;
};
template<> struct PreferenceValueTypeOf<QDateTime> {
    static constexpr PreferenceValueType value = PreferenceValueType::Date;
};
template<> struct PreferenceValueTypeOf<QByteArray> {
    static constexpr PreferenceValueType value = PreferenceValueType::Data;
};

inline constexpr std::size_t preferenceKeyCount = 0
#define VANTROPE_PREFERENCE_COUNT(name, stored, type) +1
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_COUNT)
#undef VANTROPE_PREFERENCE_COUNT
    ;

constexpr PreferenceValueType preferenceValueType(PreferenceKey key)
{
    switch (key) {
#define VANTROPE_PREFERENCE_TYPE_CASE(name, stored, type)                                                    \
    case PreferenceKey::name:                                                                                \
        return PreferenceValueTypeOf<type>::value;
        VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_TYPE_CASE)
#undef VANTROPE_PREFERENCE_TYPE_CASE
    }
    return PreferenceValueType::Bool;
}

constexpr std::size_t preferenceKeyIndex(PreferenceKey key)
{
    return static_cast<std::size_t>(key);
}

// The name under which the value is kept in the preferences file.
QString preferenceStoredName(PreferenceKey key);
std::optional<PreferenceKey> preferenceKeyFromStoredName(QStringView storedName);
std::span<const PreferenceKey, preferenceKeyCount> allPreferenceKeys();

// A key that carries its value type, so that reading or writing a value of another type does not
// compile. Only the constants in `PreferenceKeys` are meant to exist; a mismatched one is rejected
// at compile time.
template<typename T> class TypedPreferenceKey final {
public:
    using ValueType = T;

    consteval explicit TypedPreferenceKey(PreferenceKey key)
        : m_key(key)
    {
        if (preferenceValueType(key) != PreferenceValueTypeOf<T>::value) {
            throw "the value type does not match the preference key";
        }
    }

    constexpr PreferenceKey key() const { return m_key; }
    constexpr operator PreferenceKey() const { return m_key; }

private:
    PreferenceKey m_key;
};

namespace PreferenceKeys {
#define VANTROPE_PREFERENCE_CONSTANT(name, stored, type)                                                     \
    inline constexpr TypedPreferenceKey<type> name{PreferenceKey::name};
VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_CONSTANT)
#undef VANTROPE_PREFERENCE_CONSTANT
} // namespace PreferenceKeys

} // namespace Vantrope
