// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Platform/DBus/SettingsRequestHandler.h"

namespace Vantrope {

class Preferences;

// Reads and changes preferences for the command line, checking each value against its key's type.
class SettingsService final : public SettingsRequestHandler {
public:
    explicit SettingsService(Preferences& preferences);

    std::expected<QString, Error> setting(const QString& name) const override;
    std::expected<QString, Error> setSetting(const QString& name, const QString& value) override;

private:
    Preferences& m_preferences;
};

} // namespace Vantrope
