// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

namespace Vantrope {

class Action;

// An action that needs setting up first (an upload without an account). Until it is configured it is
// offered nowhere.
class ConfigurableAction {
public:
    virtual ~ConfigurableAction() = default;
    virtual bool isConfigured() const = 0;
};

// An action that is not configurable counts as configured.
bool actionIsConfigured(const Action& action);

} // namespace Vantrope
