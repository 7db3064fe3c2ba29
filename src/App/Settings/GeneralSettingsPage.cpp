// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "GeneralSettingsPage.h"

#include "Libraries/Core/Localized.h"
#include "PreferenceBinding.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace Vantrope {

GeneralSettingsPage::GeneralSettingsPage(Preferences& preferences, const ActivationAvailability& activation,
                                         QWidget* parent)
    : SettingsPage(parent)
{
    QFormLayout* startup = addSection(Localized("settings.general.section.startup", "Start-up"));
    PreferenceBinding::bind(addCheckBox(startup, QStringLiteral("launchAtLogin"),
                                        PreferenceBinding::label(PreferenceKey::launchAtLogin)),
                            preferences, PreferenceKeys::launchAtLogin);

    QFormLayout* tray = addSection(Localized("settings.general.section.tray", "Tray icon"));
    auto* icon = new QComboBox(this);
    icon->setObjectName(QStringLiteral("preferredMenuBarIconIdentifier"));
    icon->addItem(Localized("settings.general.tray-icon.traditional", "Classic"),
                  SettingsItem::storedValue(SettingsItem::MenuBarIcon::traditional));
    icon->addItem(Localized("settings.general.tray-icon.document", "Document"),
                  SettingsItem::storedValue(SettingsItem::MenuBarIcon::document));
    icon->addItem(Localized("settings.general.tray-icon.document-tilted", "Tilted document"),
                  SettingsItem::storedValue(SettingsItem::MenuBarIcon::documentTilted));
    PreferenceBinding::bind(icon, preferences, PreferenceKeys::preferredMenuBarIconIdentifier);
    tray->addRow(PreferenceBinding::label(PreferenceKey::preferredMenuBarIconIdentifier), icon);
    auto* hidden = addCheckBox(tray, QStringLiteral("prefersHiddenStatusItem"),
                               PreferenceBinding::label(PreferenceKey::prefersHiddenStatusItem));
    PreferenceBinding::bind(hidden, preferences, PreferenceKeys::prefersHiddenStatusItem);
    addNote(tray, Localized("settings.general.hide-tray-icon.note",
                            "With the icon hidden, open the settings again by starting Vantrope from the "
                            "application menu."));

    QFormLayout* activationSection =
        addSection(Localized("settings.general.section.activation", "Opening shelves in this session"));
    auto* summary = new QLabel(activation.summary(), this);
    summary->setObjectName(QStringLiteral("activationSummary"));
    summary->setWordWrap(true);
    summary->setTextFormat(Qt::PlainText);
    activationSection->addRow(summary);

    QFormLayout* troubleshooting =
        addSection(Localized("settings.general.section.troubleshooting", "Troubleshooting"));
    PreferenceBinding::bind(addCheckBox(troubleshooting, QStringLiteral("fileLoggingEnabled"),
                                        PreferenceBinding::label(PreferenceKey::fileLoggingEnabled)),
                            preferences, PreferenceKeys::fileLoggingEnabled);
    addNote(troubleshooting, Localized("settings.general.file-logging.note",
                                       "The log is kept with the application data (see Application data)."));
    finish();
}

} // namespace Vantrope
