// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "PreviewWindow.h"

#include <QPointer>

namespace Vantrope {

// Shows the items in the preview window, one at a time.
class QuickLookAction final : public Action {
public:
    ~QuickLookAction() override;

    ActionCategory category() const override { return ActionCategory::primary; }
    QString identifier() const override;
    QString iconName() const override;
    QString title() const override;

    bool canPerform(const ActionItemList& items) const override { return !items.isEmpty(); }
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;
    // Closes the window.
    void cancel() override;

    PreviewWindow* previewWindow() const { return m_window; }

private:
    QPointer<PreviewWindow> m_window;
};

} // namespace Vantrope
