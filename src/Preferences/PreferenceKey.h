// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "KeyCombination.h"

#include <cstddef>
#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <utility>

namespace Vantrope {

// Keyboard action identifier to its combination, as the keyboard actions are bound.
using KeyCombinations = QMap<QString, KeyCombination>;

// Every preference, in enum order:
//   enumerator, stored name, value type, when the default applies, label, default (none when left out).
// Stored names are what existing preference files hold, odd ones included, so they never change. A
// label names a key that a person changes in the settings; `internal` marks the program's own
// bookkeeping. The last three columns are read by PreferenceDefinition.cpp only.
// clang-format off
#define VANTROPE_PREFERENCE_KEYS(X) \
    X(hasLaunchedApp, "IsFirstLaunch", bool, atRead, internal, false) \
    X(hasSeenLaunchAtLoginDialog, "HasSeenLaunchAtLoginDialog", bool, atRead, internal, false) \
    X(launchAtLogin, "LaunchAtLogin", bool, atRead, \
      label("settings.general.launch-at-login", "Open Vantrope when you log in"), false) \
    X(numberOfDrops, "NumberOfDrops", int, atRead, internal, 0) \
    X(showHideHotKeyCombo, "ShowHideHotKeyCombo", KeyCombination, atRead, \
      label("settings.shortcuts.new-shelf", "Shortcut for a new shelf")) \
    X(showHideClipboardHotKeyCombo, "ShowHideClipboardHotKeyCombo", KeyCombination, atRead, \
      label("settings.shortcuts.clipboard-shelf", "Shortcut for a shelf with the clipboard")) \
    X(didConfigureDefaultShowHideHotKey, "didConfigureDefaultShowHideHotKey", bool, atRead, internal, false) \
    X(copiesContentOnDrag, "CopiesContentOnDrag", bool, atRead, \
      label("settings.shelf.copies-content-on-drag", "Always copy items dragged out of a shelf"), false) \
    X(lastSeenWhatsNewVersion, "LastSeenWhatsNewVersion", QString, atRead, internal) \
    X(prefersHiddenStatusItem, "PrefersHiddenStatusItem", bool, atRead, \
      label("settings.general.hide-tray-icon", "Hide the tray icon"), false) \
    X(fileLoggingEnabled, "FileLoggingEnabled", bool, atRead, \
      label("settings.advanced.file-logging", "Write a log file"), false) \
    X(imgurServiceEnabled, "ImgurServiceEnabled", bool, atRead, \
      label("settings.services.imgur", "Share images through Imgur"), false) \
    X(shakeGestureSensitivity, "ShakeGestureSensitivity", int, atRead, \
      label("settings.activation.shake-sensitivity", "How hard to shake the pointer"), \
      SettingsItem::storedValue(SettingsItem::ShakeSensitivity::normal)) \
    X(shakeGestureDisabled, "ShakeGestureDisabled", bool, atRead, \
      label("settings.activation.shake-disabled", "Don't open a shelf when the pointer is shaken"), false) \
    X(ignoredApplication, "IgnoredApplications", QStringList, atRead, \
      label("settings.activation.ignored-applications", "Programs in which a shake opens no shelf"), \
      QStringList()) \
    X(customIgnoredApplicationPaths, "customIgnoredApplicationPaths", QStringList, atRead, internal, \
      QStringList()) \
    X(prefersSystemShareServiceSubmenu, "PrefersSystemShareServiceSubmenu", bool, atRead, \
      label("settings.actions.share-submenu", "Put the desktop's share targets in a submenu"), false) \
    X(prefersShowInTaskbar, "PrefersShowInDock", bool, firstRunRule, \
      label("settings.general.show-in-taskbar", "Show Vantrope in the taskbar"), false) \
    X(doubleClickAction, "DoubleClickAction", int, firstRun, \
      label("settings.shelf.double-click", "Double-clicking an item"), \
      SettingsItem::storedValue(SettingsItem::DoubleClick::showInFileManager)) \
    X(defaultShelfLocation, "DefaultShelfLocation", QString, atRead, \
      label("settings.shelf.location", "Where a new shelf opens"), \
      SettingsItem::storedValue(SettingsItem::ShelfLocation::topRight)) \
    X(shelfTriggerModifierKey, "ShelfTriggerModifierKey", QString, firstRun, \
      label("settings.activation.modifier-key", "Key to hold during a drag"), \
      SettingsItem::storedValue(SettingsItem::ShelfTriggerModifierKey::shift)) \
    X(shelfTriggerModifierKeyEnabled, "ShelfTriggerModifierKeyEnabled", bool, firstRun, \
      label("settings.activation.modifier-key-enabled", "Open a shelf when a key is held during a drag"), \
      true) \
    X(didMigrateTemporaryDirectoryStructure, "DidMigrateTemporaryDirectoryStructure", bool, firstRun, \
      internal, false) \
    X(draggableTextForcesPlainText, "DraggableTextForcesPlainText", bool, firstRun, \
      label("settings.shelf.plain-text", "Keep dropped text as plain text"), false) \
    X(lastOutlineDisplayMode, "LastOutlineDisplayMode", int, firstRun, internal, 0) \
    X(bucketDestinationPath, "BucketDestinationPath", QByteArray, atRead, \
      label("settings.services.s3.path", "Folder in the bucket for uploads")) \
    X(amazonAccessControl, "AmazonAccessControl", QString, atRead, internal) \
    X(amazonExpiration, "AmazonExpiration", int, atRead, internal, 0) \
    X(fileOperationMainMenuIdentifiers, "FileOperationMainMenuIdentifiers", QStringList, firstRun, \
      label("settings.actions.main-menu", "File operations in the action menu"), \
      QStringList{QStringLiteral("file_op_copy"), QStringLiteral("file_op_move")}) \
    X(shelfLabelsEnabled, "ShelfLabelsEnabled", bool, atRead, \
      label("settings.shelf.labels", "Show shelf labels"), false) \
    X(shelfHotkeysEnabled, "ShelfHotkeysEnabled", bool, firstRun, \
      label("settings.shortcuts.shelf", "Shortcuts on the shelf under the pointer"), true) \
    X(recentActions, "RecentActions", QStringList, atRead, internal, QStringList()) \
    X(instantActionsEnabled, "InstantActionsEnabled", bool, firstRun, \
      label("settings.actions.instant", "Instant actions"), true) \
    X(instantActions, "InstantActions", QStringList, atRead, internal, QStringList()) \
    X(notchDragEnabled, "NotchDragEnabled", bool, firstRunRule, \
      label("settings.activation.top-drop-zone", "Open a shelf when dragging to the top of the screen"), \
      false) \
    X(notchDragHighlightBehavior, "NotchDragHighlightBehavior", int, firstRun, \
      label("settings.activation.top-drop-zone-highlight", "When to show the drop zone at the top"), \
      SettingsItem::storedValue(SettingsItem::NotchDragHighlightBehavior::always)) \
    X(automaticWindowSnappingEnabled, "AutomaticWindowSnappingEnabled", bool, atRead, \
      label("settings.shelf.snapping", "Snap shelves into place"), false) \
    X(alwaysCloseShelf, "AlwaysCloseShelf", bool, atRead, \
      label("settings.shelf.always-close", "Close a shelf once its items are dragged out"), false) \
    X(keepShelfInSpace, "KeepShelfInSpace", bool, atRead, \
      label("settings.shelf.keep-on-desktop", "Keep each shelf on the desktop where it opened"), false) \
    X(shelfRetractionEnabled, "ShelfRetractionEnabled", bool, firstRunRule, \
      label("settings.shelf.retraction", "Slide an empty shelf aside once something is dropped on it"), \
      false) \
    X(didPerformRecentShelvesMigration, "DidPerformRecentShelvesMigration", bool, atRead, internal, false) \
    X(didPerformThumbnailGeneratorMigration, "DidPerformThumbnailGeneratorMigration", bool, atRead, \
      internal, false) \
    X(didRemoveIndividualRecentShelf, "DidRemoveIndividualRecentShelf", bool, atRead, internal, false) \
    X(recentShelfMenuViewCount, "RecentShelfMenuViewCount", int, atRead, internal, 0) \
    X(doubleClickEdgeAction, "DoubleClickEdgeAction", QString, atRead, \
      label("settings.shelf.double-click-edge", "Double-clicking a docked shelf")) \
    X(screenshotObservationEnabled, "ScreenshotObservationEnabled", bool, atRead, \
      label("settings.screenshots.enabled", "Put new screenshots on a shelf"), false) \
    X(screenshotObservationDistributionOption, "ScreenshotObservationDistributionOption", QString, atRead, \
      label("settings.screenshots.distribution", "Shelf for new screenshots")) \
    X(screenshotObservationSetupPerformed, "ScreenshotObservationSetupPerformed", bool, atRead, internal, \
      false) \
    X(lastTemporaryDataSanitationDate, "LastTemporaryDataSanitationDate", QDateTime, atRead, internal) \
    X(registeredKeyboardActionIdentifiers, "RegisteredKeyboardActionIdentifiers", QStringList, atRead, \
      label("settings.shortcuts.actions", "Keyboard actions in use"), QStringList()) \
    X(registeredKeyboardActionCombinations, "RegisteredKeyboardActionCombinations", KeyCombinations, \
      atRead, label("settings.shortcuts.combinations", "Keys of the keyboard actions")) \
    X(userScreenshotCopyToClipboard, "UserScreenshotCopyToClipboard", bool, atRead, \
      label("settings.screenshots.copy", "Copy new screenshots to the clipboard"), false) \
    X(userScreenshotShowConfirmationMessage, "UserScreenshotShowConfirmationMessage", bool, firstRun, \
      label("settings.screenshots.confirmation", "Say when a screenshot is put on a shelf"), true) \
    X(didPerformWatchedFoldersFilterMigration, "DidPerformWatchedFoldersFilterMigration", bool, firstRun, \
      internal, false) \
    X(didPerformInstantActionMigration, "DidPerformanceInstantActionMigration", bool, atRead, internal, \
      false) \
    X(preferredMenuBarIconIdentifier, "PreferredMenuBarIconIdentifier", QString, firstRun, \
      label("settings.general.tray-icon", "Tray icon"), \
      SettingsItem::storedValue(SettingsItem::MenuBarIcon::traditional)) \
    X(onlineFeaturesDisabled, "OnlineFeaturesDisabled", bool, atRead, \
      label("settings.advanced.online-features-disabled", "Turn off online features"), false) \
    X(lastSettingsPage, "LastSettingsPage", QString, atRead, internal)
// clang-format on

enum class PreferenceKey {
#define VANTROPE_PREFERENCE_ENUMERATOR(name, ...) name,
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_ENUMERATOR)
#undef VANTROPE_PREFERENCE_ENUMERATOR
};

enum class PreferenceValueType {
    Bool,
    Int,
    String,
    StringList,
    KeyCombination,
    KeyCombinations,
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
template<> struct PreferenceValueTypeOf<KeyCombination> {
    static constexpr PreferenceValueType value = PreferenceValueType::KeyCombination;
};
template<> struct PreferenceValueTypeOf<KeyCombinations> {
    static constexpr PreferenceValueType value = PreferenceValueType::KeyCombinations;
};
template<> struct PreferenceValueTypeOf<QDateTime> {
    static constexpr PreferenceValueType value = PreferenceValueType::Date;
};
template<> struct PreferenceValueTypeOf<QByteArray> {
    static constexpr PreferenceValueType value = PreferenceValueType::Data;
};

inline constexpr std::size_t preferenceKeyCount = 0
#define VANTROPE_PREFERENCE_COUNT(name, ...) +1
    VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_COUNT)
#undef VANTROPE_PREFERENCE_COUNT
    ;

constexpr PreferenceValueType preferenceValueType(PreferenceKey key)
{
    switch (key) {
#define VANTROPE_PREFERENCE_TYPE_CASE(name, stored, type, ...)                                               \
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
#define VANTROPE_PREFERENCE_CONSTANT(name, stored, type, ...)                                                \
    inline constexpr TypedPreferenceKey<type> name{PreferenceKey::name};
VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_CONSTANT)
#undef VANTROPE_PREFERENCE_CONSTANT
} // namespace PreferenceKeys

// Calls `visitor` with the typed constant of `key`, for code that reaches keys through the table, such as
// a settings list. Every call must return the same type.
template<typename Visitor> decltype(auto) visitPreferenceKey(PreferenceKey key, Visitor&& visitor)
{
    switch (key) {
#define VANTROPE_PREFERENCE_VISIT_CASE(name, ...)                                                            \
    case PreferenceKey::name:                                                                                \
        return std::forward<Visitor>(visitor)(PreferenceKeys::name);
        VANTROPE_PREFERENCE_KEYS(VANTROPE_PREFERENCE_VISIT_CASE)
#undef VANTROPE_PREFERENCE_VISIT_CASE
    }
    Q_UNREACHABLE();
}

} // namespace Vantrope
