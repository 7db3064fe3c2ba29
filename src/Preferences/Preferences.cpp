#include "Preferences.h"

#include "SettingsItem.h"

Q_LOGGING_CATEGORY(lcPreferences, "vantrope.preferences")

namespace Vantrope {

Preferences::Preferences(std::unique_ptr<PreferenceStorage> storage, QObject* parent)
    : QObject(parent)
    , m_storage(std::move(storage))
{
    Q_ASSERT(m_storage);
}

Preferences::~Preferences() = default;

template<typename T>
void Preferences::registerDefault(TypedPreferenceKey<T> key, const std::type_identity_t<T>& value)
{
    if (storedValue(key)) {
        return;
    }
    qCDebug(lcPreferences).noquote() << "Registering the default of" << preferenceStoredName(key.key());
    setValue(key, value);
}

void Preferences::registerDefaults(const std::function<void(Preferences&)>& keyboardActionDefaults)
{
    using namespace PreferenceKeys;

    registerDefault(prefersShowInDock, value(prefersHiddenStatusItem, false));
    registerDefault(doubleClickAction, SettingsItem::storedValue(SettingsItem::DoubleClick::revealInFinder));
    registerDefault(shelfTriggerModifierKey,
                    SettingsItem::storedValue(SettingsItem::ShelfTriggerModifierKey::shift));
    registerDefault(shelfTriggerModifierKeyEnabled, true);
    registerDefault(didMigrateTemporaryDirectoryStructure, false);
    registerDefault(draggableTextForcesPlainText, false);
    registerDefault(lastOutlineDisplayMode, 0);
    registerDefault(shelfHotkeysEnabled, true);
    registerDefault(instantActionsEnabled, true);
    registerDefault(notchDragHighlightBehavior,
                    SettingsItem::storedValue(SettingsItem::NotchDragHighlightBehavior::always));
    if (!storedValue(hasLaunchedApp)) {
        registerDefault(shelfRetractionEnabled, false);
    }
    // hasLaunchedApp is only written at the end of the first start, so these are on for a fresh
    // installation and off for users who upgrade from a version without them.
    const bool firstRun = !value(hasLaunchedApp, false);
    registerDefault(cloudRequiresAgreement, firstRun);
    registerDefault(notchDragEnabled, firstRun);
    registerDefault(userScreenshotShowConfirmationMessage, true);
    registerDefault(didPerformWatchedFoldersFilterMigration, false);
    registerDefault(preferredMenuBarIconIdentifier,
                    SettingsItem::storedValue(SettingsItem::MenuBarIcon::traditional));
    registerDefault(fileOperationMainMenuIdentifiers,
                    QStringList{QStringLiteral("file_op_copy"), QStringLiteral("file_op_move")});

    if (keyboardActionDefaults) {
        keyboardActionDefaults(*this);
    }
}

void Preferences::sync()
{
    m_storage->sync();
}

} // namespace Vantrope
