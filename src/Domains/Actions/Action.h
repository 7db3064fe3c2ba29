// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "ActionCategory.h"
#include "ActionContext.h"
#include "ActionError.h"
#include "ActionItem.h"
#include "ActionItemPreparationStrategy.h"
#include "ActionResultContext.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QList>
#include <QString>

namespace Vantrope {

class ActionMenuItemProvider;
class ActionPreparation;

// Something the user can do with the items of a shelf.
//
// The controller calls `perform` and `cancel` on the main thread. While the menu is worked out, the
// descriptive members and `canPerform` are read on a worker thread, so they must not touch widgets or
// the clipboard; an action that depends on such state caches it on the main thread.
class Action {
public:
    using Result = std::expected<ActionResultContext, ActionError>;
    // `fraction` runs from 0 to 1; the title, when given, replaces the shelf's progress label.
    using ProgressHandler = std::function<void(double fraction, const std::optional<QString>& title)>;
    using Completion = std::function<void(const Result& result)>;

    virtual ~Action() = default;
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;

    // Written by the controller just before a menu opens.
    virtual std::optional<ActionContext> actionContext() const { return m_actionContext; }
    virtual void setActionContext(const std::optional<ActionContext>& context) { m_actionContext = context; }

    virtual ActionCategory category() const = 0;
    // Stable across runs: the key of the recent actions and of the stored instant actions.
    virtual QString identifier() const = 0;
    // A freedesktop icon-theme name.
    virtual QString iconName() const = 0;
    virtual QString title() const = 0;
    // After a successful run the shelf closes.
    virtual bool isDestructive() const { return false; }
    virtual bool isSearchable() const { return true; }
    virtual bool hidesSourceWindowDuringAction() const { return false; }
    virtual ActionItemPreparationStrategy itemPreparationStrategy() const
    {
        return ActionItemPreparationStrategy::none;
    }
    virtual ActionPreparation* preparation() { return nullptr; }
    // None leaves the action out of the menu.
    virtual const ActionMenuItemProvider* menuItemProvider() const;

    virtual bool canPerform(const ActionItemList& items) const = 0;
    // `progress` and `completion` may be called on any thread. After `cancel()` the completion is
    // expected to report `ActionError::Kind::canceled`, or nothing at all.
    virtual void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) = 0;
    virtual void cancel() {}

protected:
    Action() = default;

private:
    std::optional<ActionContext> m_actionContext;
};

using ActionPtr = std::shared_ptr<Action>;
using ActionList = QList<ActionPtr>;

} // namespace Vantrope
