// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActivationAvailability.h"
#include "SettingsPage.h"

namespace Vantrope {

class Preferences;

// Starting with the session, the tray icon, the log file, and which ways of opening a shelf work here.
class GeneralSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    GeneralSettingsPage(Preferences& preferences, const ActivationAvailability& activation,
                        QWidget* parent = nullptr);
};

} // namespace Vantrope
