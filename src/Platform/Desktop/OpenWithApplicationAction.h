// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DesktopApplications.h"
#include "Domains/Actions/Action.h"

namespace Vantrope {

// One row of the "Open With" submenu: opens all the items with one application.
class OpenWithApplicationAction final : public Action {
public:
    explicit OpenWithApplicationAction(DesktopApplication application);

    const DesktopApplication& application() const { return m_application; }

    ActionCategory category() const override { return ActionCategory::primary; }
    // "openfilewith." and the application's desktop id.
    QString identifier() const override;
    QString iconName() const override { return m_application.iconName; }
    QString title() const override { return m_application.name; }
    bool isSearchable() const override { return false; }

    bool canPerform(const ActionItemList& items) const override { return !items.isEmpty(); }
    // A launch that fails ends with a message for the user, since a failed primary action shows
    // nothing on the shelf.
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    DesktopApplication m_application;
};

} // namespace Vantrope
