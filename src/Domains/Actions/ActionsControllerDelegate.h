// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"

#include <optional>
#include <QString>

namespace Vantrope {

class ActionsController;

// Hears how a run goes, in this order: preparing (only when the items need it), performing, progress,
// finished. Called on the main thread.
class ActionsControllerDelegate {
public:
    virtual ~ActionsControllerDelegate() = default;

    virtual void didStartPreparingAction(const ActionPtr& action, ActionsController& actionsController) = 0;
    virtual void didStartPerformingAction(const ActionPtr& action, ActionsController& actionsController) = 0;
    virtual void didUpdateProgressForAction(const ActionPtr& action, double progress,
                                            const std::optional<QString>& progressTitle,
                                            ActionsController& actionsController) = 0;
    // The last report of a run, also for a failed preparation. The delegate may destroy the controller
    // from here.
    virtual void didFinishPerformingAction(const ActionPtr& action, ActionsController& actionsController,
                                           const Action::Result& result) = 0;
};

} // namespace Vantrope
