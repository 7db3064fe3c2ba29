// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ApplicationRequestHandler.h"

#include <QString>

namespace Vantrope {

// The preferences of a running Vantrope, for its command line, by their stored names. Values travel as
// text: JSON for lists and records, plain for the rest.
class SettingsRequestHandler {
public:
    using Error = ApplicationRequestHandler::Error;

    virtual ~SettingsRequestHandler() = default;

    virtual std::expected<QString, Error> setting(const QString& name) const = 0;
    // The value as it now stands.
    virtual std::expected<QString, Error> setSetting(const QString& name, const QString& value) = 0;
};

} // namespace Vantrope
