// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "ShareTarget.h"

namespace Vantrope {

// Sends the items to one share target. The shelf hides while the target's own window takes over, and
// closes after it has the files.
class SharingServiceAction final : public Action {
public:
    explicit SharingServiceAction(ShareTarget target);

    ActionCategory category() const override { return ActionCategory::systemShare; }
    // "sharingservice_" and the target's own id.
    QString identifier() const override;
    QString iconName() const override { return m_target.iconName; }
    QString title() const override { return m_target.title; }
    bool isDestructive() const override { return true; }
    bool hidesSourceWindowDuringAction() const override { return true; }

    // Local files only: every target takes paths.
    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    ShareTarget m_target;
};

} // namespace Vantrope
