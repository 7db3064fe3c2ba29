// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActivationAvailability.h"
#include "SettingsPage.h"

class QListWidget;
class QPushButton;

namespace Vantrope {

class DragMonitor;
class Preferences;

// The shake, the key held during a drag, the programs where neither opens a shelf, and the drop zone at
// the top of the screen.
class ActivationSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    // `monitor` lists the running programs to ignore; none offers the installed ones only.
    ActivationSettingsPage(Preferences& preferences, const ActivationAvailability& availability,
                           DragMonitor* monitor, QWidget* parent = nullptr);

private:
    void showIgnoredApplications();
    void showAddMenu();
    void addIgnoredApplication(const QString& name);
    void removeSelectedApplications();

    Preferences& m_preferences;
    DragMonitor* m_monitor;
    QListWidget* m_ignored;
    QPushButton* m_add;
    QPushButton* m_remove;
};

} // namespace Vantrope
