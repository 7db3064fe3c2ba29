// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionsControllerInvalidation.h"

namespace Vantrope {

ActionsControllerInvalidation& ActionsControllerInvalidation::instance()
{
    // Never destroyed: controllers may still disconnect from it while the program ends.
    static auto* invalidation = new ActionsControllerInvalidation;
    return *invalidation;
}

void ActionsControllerInvalidation::post()
{
    Q_EMIT invalidated();
}

} // namespace Vantrope
