// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActivationSettingsPage.h"

#include "Libraries/Core/Localized.h"
#include "PreferenceBinding.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"
#include "RunningApplications.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

namespace Vantrope {

namespace {

using Sensitivity = SettingsItem::ShakeSensitivity;
using Modifier = SettingsItem::ShelfTriggerModifierKey;
using Highlight = SettingsItem::NotchDragHighlightBehavior;

// A menu grows past the screen with hundreds of programs; the rest are typed in.
constexpr qsizetype maximumInstalledEntries = 40;

} // namespace

ActivationSettingsPage::ActivationSettingsPage(Preferences& preferences,
                                               const ActivationAvailability& availability,
                                               DragMonitor* monitor, QWidget* parent)
    : SettingsPage(parent)
    , m_preferences(preferences)
    , m_monitor(monitor)
    , m_ignored(new QListWidget(this))
    , m_add(new QPushButton(Localized("settings.activation.ignored.add", "Add…"), this))
    , m_remove(new QPushButton(Localized("settings.activation.ignored.remove", "Remove"), this))
{
    const QString unavailable = availability.unavailableNote();

    QFormLayout* shake = addSection(Localized("settings.activation.section.shake", "Shaking the pointer"));
    auto* shakeEnabled = addCheckBox(shake, QStringLiteral("shakeGestureEnabled"),
                                     Localized("settings.activation.shake-enabled",
                                               "Open a shelf when the pointer is shaken during a drag"));
    PreferenceBinding::bind(shakeEnabled, preferences, PreferenceKeys::shakeGestureDisabled, true);
    auto* sensitivity = new QComboBox(this);
    sensitivity->setObjectName(QStringLiteral("shakeGestureSensitivity"));
    sensitivity->addItem(Localized("settings.activation.shake-sensitivity.normal", "Normal"),
                         SettingsItem::storedValue(Sensitivity::normal));
    sensitivity->addItem(Localized("settings.activation.shake-sensitivity.high", "A little"),
                         SettingsItem::storedValue(Sensitivity::high));
    sensitivity->addItem(Localized("settings.activation.shake-sensitivity.ludicrous", "Barely"),
                         SettingsItem::storedValue(Sensitivity::ludicrous));
    PreferenceBinding::bind(sensitivity, preferences, PreferenceKeys::shakeGestureSensitivity);
    shake->addRow(PreferenceBinding::label(PreferenceKey::shakeGestureSensitivity), sensitivity);
    sensitivity->setEnabled(shakeEnabled->isChecked());
    connect(shakeEnabled, &QCheckBox::toggled, sensitivity, &QWidget::setEnabled);
    if (!unavailable.isEmpty()) {
        addNote(shake, unavailable)->setObjectName(QStringLiteral("shakeUnavailable"));
    }

    QFormLayout* modifier = addSection(Localized("settings.activation.section.modifier", "Holding a key"));
    auto* modifierEnabled =
        addCheckBox(modifier, QStringLiteral("shelfTriggerModifierKeyEnabled"),
                    PreferenceBinding::label(PreferenceKey::shelfTriggerModifierKeyEnabled));
    PreferenceBinding::bind(modifierEnabled, preferences, PreferenceKeys::shelfTriggerModifierKeyEnabled);
    auto* key = new QComboBox(this);
    key->setObjectName(QStringLiteral("shelfTriggerModifierKey"));
    key->addItem(Localized("settings.activation.modifier-key.shift", "Shift"),
                 SettingsItem::storedValue(Modifier::shift));
    key->addItem(Localized("settings.activation.modifier-key.control", "Ctrl"),
                 SettingsItem::storedValue(Modifier::control));
    key->addItem(Localized("settings.activation.modifier-key.super", "Super (the logo key)"),
                 SettingsItem::storedValue(Modifier::command));
    PreferenceBinding::bind(key, preferences, PreferenceKeys::shelfTriggerModifierKey);
    modifier->addRow(PreferenceBinding::label(PreferenceKey::shelfTriggerModifierKey), key);
    key->setEnabled(modifierEnabled->isChecked());
    connect(modifierEnabled, &QCheckBox::toggled, key, &QWidget::setEnabled);
    if (!unavailable.isEmpty()) {
        addNote(modifier, unavailable);
    }

    QFormLayout* ignored = addSection(PreferenceBinding::label(PreferenceKey::ignoredApplication));
    m_ignored->setObjectName(QStringLiteral("ignoredApplications"));
    m_ignored->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_ignored->setMinimumHeight(fontMetrics().height() * 5);
    m_ignored->setMaximumHeight(fontMetrics().height() * 8);
    m_add->setObjectName(QStringLiteral("addIgnoredApplication"));
    m_remove->setObjectName(QStringLiteral("removeIgnoredApplication"));
    auto* listRow = new QHBoxLayout;
    listRow->addWidget(m_ignored, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    listRow->addLayout(buttons);
    ignored->addRow(listRow);
    addNote(ignored, Localized("settings.activation.ignored.note",
                               "Programs are known by the class of their windows. Neither a shake nor a "
                               "held key opens a shelf while you drag in them."));
    showIgnoredApplications();
    connect(m_add, &QPushButton::clicked, this, &ActivationSettingsPage::showAddMenu);
    connect(m_remove, &QPushButton::clicked, this, &ActivationSettingsPage::removeSelectedApplications);
    connect(m_ignored, &QListWidget::itemSelectionChanged, this,
            [this] { m_remove->setEnabled(!m_ignored->selectedItems().isEmpty()); });
    m_remove->setEnabled(false);
    connect(&preferences, &Preferences::changed, this, [this](PreferenceKey changed) {
        if (changed == PreferenceKey::ignoredApplication) {
            showIgnoredApplications();
        }
    });

    QFormLayout* zone =
        addSection(Localized("settings.activation.section.top-drop-zone", "Top of the screen"));
    auto* zoneEnabled = addCheckBox(zone, QStringLiteral("notchDragEnabled"),
                                    PreferenceBinding::label(PreferenceKey::notchDragEnabled));
    PreferenceBinding::bind(zoneEnabled, preferences, PreferenceKeys::notchDragEnabled);
    auto* highlight = new QComboBox(this);
    highlight->setObjectName(QStringLiteral("notchDragHighlightBehavior"));
    highlight->addItem(
        Localized("settings.activation.top-drop-zone-highlight.always", "As soon as a drag starts"),
        SettingsItem::storedValue(Highlight::always));
    highlight->addItem(
        Localized("settings.activation.top-drop-zone-highlight.hover", "When a drag comes near"),
        SettingsItem::storedValue(Highlight::hover));
    highlight->addItem(Localized("settings.activation.top-drop-zone-highlight.never", "Never"),
                       SettingsItem::storedValue(Highlight::never));
    PreferenceBinding::bind(highlight, preferences, PreferenceKeys::notchDragHighlightBehavior);
    zone->addRow(PreferenceBinding::label(PreferenceKey::notchDragHighlightBehavior), highlight);
    highlight->setEnabled(zoneEnabled->isChecked());
    connect(zoneEnabled, &QCheckBox::toggled, highlight, &QWidget::setEnabled);
    if (!unavailable.isEmpty()) {
        addNote(zone, unavailable)->setObjectName(QStringLiteral("topDropZoneUnavailable"));
    }
    finish();
}

void ActivationSettingsPage::showIgnoredApplications()
{
    const QStringList names = m_preferences.value(PreferenceKeys::ignoredApplication);
    m_ignored->clear();
    m_ignored->addItems(names);
    m_remove->setEnabled(false);
}

void ActivationSettingsPage::showAddMenu()
{
    const QStringList ignored = m_preferences.value(PreferenceKeys::ignoredApplication);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("addIgnoredApplicationMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto addEntries = [this, &ignored](QMenu* target,
                                             const QList<RunningApplications::Application>& applications,
                                             qsizetype limit) {
        qsizetype added = 0;
        for (const auto& application : applications) {
            if (ignored.contains(application.name) || added == limit) {
                continue;
            }
            const QString text = application.title == application.name
                                     ? application.name
                                     : QStringLiteral("%1 (%2)").arg(application.title, application.name);
            QAction* action = target->addAction(text);
            connect(action, &QAction::triggered, this,
                    [this, name = application.name] { addIgnoredApplication(name); });
            ++added;
        }
        return added;
    };
    menu->addSection(Localized("settings.activation.ignored.running", "Running now"));
    if (!m_monitor || addEntries(menu, RunningApplications::running(*m_monitor), -1) == 0) {
        menu->addAction(Localized("settings.activation.ignored.none-running", "No other program found"))
            ->setEnabled(false);
    }
    QMenu* installed =
        menu->addMenu(Localized("settings.activation.ignored.installed", "Installed programs"));
    if (addEntries(installed, RunningApplications::installed(), maximumInstalledEntries) == 0) {
        installed->setEnabled(false);
    }
    menu->addSeparator();
    QAction* other = menu->addAction(Localized("settings.activation.ignored.other", "Other…"));
    other->setObjectName(QStringLiteral("addOtherApplication"));
    connect(other, &QAction::triggered, this, [this] {
        auto* dialog = new QInputDialog(this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(Localized("settings.activation.ignored.other.title", "Ignore a Program"));
        dialog->setLabelText(Localized("settings.activation.ignored.other.label",
                                       "The class of the program's windows, such as \"gimp\":"));
        connect(dialog, &QInputDialog::textValueSelected, this,
                [this](const QString& text) { addIgnoredApplication(text.trimmed()); });
        dialog->open();
    });
    menu->popup(m_add->mapToGlobal(QPoint(0, m_add->height())));
}

void ActivationSettingsPage::addIgnoredApplication(const QString& name)
{
    QStringList names = m_preferences.value(PreferenceKeys::ignoredApplication);
    if (name.isEmpty() || names.contains(name)) {
        return;
    }
    names.append(name);
    m_preferences.setValue(PreferenceKeys::ignoredApplication, names);
}

void ActivationSettingsPage::removeSelectedApplications()
{
    QStringList names = m_preferences.value(PreferenceKeys::ignoredApplication);
    for (const QListWidgetItem* item : m_ignored->selectedItems()) {
        names.removeAll(item->text());
    }
    m_preferences.setValue(PreferenceKeys::ignoredApplication, names);
}

} // namespace Vantrope
