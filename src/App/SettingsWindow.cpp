// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "SettingsWindow.h"

#include "Libraries/Core/Localized.h"
#include "Preferences/Preferences.h"

#include <QCheckBox>
#include <QShortcut>
#include <QVBoxLayout>

namespace Vantrope {

SettingsWindow::SettingsWindow(Preferences& preferences, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_preferences(preferences)
    , m_launchAtLogin(
          new QCheckBox(PreferenceDefinition::of(PreferenceKey::launchAtLogin).localizedLabel(), this))
{
    setObjectName(QStringLiteral("Vantrope.SettingsWindow"));
    setWindowTitle(Localized("settings.window.title", "Vantrope Settings"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_launchAtLogin);
    layout->addStretch();
    resize(420, 240);

    m_launchAtLogin->setChecked(m_preferences.value(PreferenceKeys::launchAtLogin));
    connect(m_launchAtLogin, &QCheckBox::toggled, this,
            [this](bool checked) { m_preferences.setValue(PreferenceKeys::launchAtLogin, checked); });
    connect(&m_preferences, &Preferences::changed, this, [this](PreferenceKey key) {
        if (key == PreferenceKey::launchAtLogin) {
            m_launchAtLogin->setChecked(m_preferences.value(PreferenceKeys::launchAtLogin));
        }
    });

    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(QKeySequence::Quit, this), &QShortcut::activated, this,
            &SettingsWindow::quitRequested);
}

} // namespace Vantrope
