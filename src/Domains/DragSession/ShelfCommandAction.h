// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"

#include <functional>

namespace Vantrope {

// An action that hands its items to the shelf and is done at once: remove, clear, preferences.
class ShelfCommandAction : public Action {
public:
    using Handler = std::function<void(const ActionItemList& items)>;

    ActionCategory category() const override { return m_category; }
    QString identifier() const override { return m_identifier; }
    QString iconName() const override { return m_iconName; }
    bool canPerform(const ActionItemList& items) const override { return !m_needsItems || !items.isEmpty(); }
    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override;

protected:
    ShelfCommandAction(ActionCategory category, QString identifier, QString iconName, bool needsItems,
                       Handler handler);

private:
    ActionCategory m_category;
    QString m_identifier;
    QString m_iconName;
    bool m_needsItems;
    Handler m_handler;
};

} // namespace Vantrope
