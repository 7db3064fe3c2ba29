// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Action.h"

#include "ConfigurableAction.h"
#include "DefaultActionMenuItemProvider.h"

namespace Vantrope {

const ActionMenuItemProvider* Action::menuItemProvider() const
{
    return &DefaultActionMenuItemProvider::shared();
}

bool actionIsConfigured(const Action& action)
{
    const auto* configurable = dynamic_cast<const ConfigurableAction*>(&action);
    return !configurable || configurable->isConfigured();
}

} // namespace Vantrope
