// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "SettingsPage.h"

namespace Vantrope {

class Preferences;

// Where shelves open and how they behave.
class ShelvesSettingsPage final : public SettingsPage {
    Q_OBJECT
public:
    explicit ShelvesSettingsPage(Preferences& preferences, QWidget* parent = nullptr);
};

} // namespace Vantrope
