// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <QMutex>

namespace Vantrope {

// Opens each item with its default application. Offered when every item has one; titled "Open with
// <application>" when they all share it, else "Open"; it shows the items' icon when they are all of one
// type.
class OpenFileAction final : public Action {
public:
    ActionCategory category() const override { return ActionCategory::primary; }
    QString identifier() const override;
    // The icon for the items `canPerform` saw last.
    QString iconName() const override;
    // The title for the items `canPerform` saw last.
    QString title() const override;

    bool canPerform(const ActionItemList& items) const override;
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

private:
    mutable QMutex m_mutex;
    // The name of the one default application of the items, when they share one.
    mutable QString m_sharedApplicationName;
    // The icon of the items' one MIME type, when they share one.
    mutable QString m_sharedIconName;
};

} // namespace Vantrope
