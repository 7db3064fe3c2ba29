// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/Action.h"
#include "Domains/Actions/ActionMenuItemProvider.h"
#include "Domains/Actions/ActionPreparation.h"
#include "Domains/Actions/ConfigurableAction.h"

#include <functional>
#include <memory>
#include <optional>

namespace Vantrope::Test {

// An action whose every answer the test sets. By default it finishes at once with no result; with
// `finishesAtOnce` false it keeps its callbacks so the test can report progress and finish later.
class TestAction : public Action {
public:
    TestAction(QString identifier, ActionCategory category, QString title = {})
        : m_identifier(std::move(identifier))
        , m_category(category)
        , m_title(title.isEmpty() ? m_identifier : std::move(title))
    {}

    ActionCategory category() const override { return m_category; }
    QString identifier() const override { return m_identifier; }
    QString iconName() const override { return QStringLiteral("icon-") + m_identifier; }
    QString title() const override { return m_title; }
    bool isDestructive() const override { return destructive; }
    bool isSearchable() const override { return searchable; }
    ActionItemPreparationStrategy itemPreparationStrategy() const override { return strategy; }
    const ActionMenuItemProvider* menuItemProvider() const override
    {
        return hiddenFromMenu ? nullptr : Action::menuItemProvider();
    }
    bool canPerform(const ActionItemList& items) const override
    {
        return performable && (!minimumItems || items.size() >= *minimumItems);
    }

    void perform(const ActionItemList& items, ProgressHandler progress, Completion completion) override
    {
        performedItems.append(items);
        m_progress = std::move(progress);
        m_completion = std::move(completion);
        if (finishesAtOnce) {
            finish(result);
        }
    }

    void cancel() override
    {
        ++cancelCount;
        if (reportsCancellation && m_completion) {
            finish(std::unexpected(ActionError(ActionError::Kind::canceled)));
        }
    }

    void reportProgress(double fraction, const std::optional<QString>& title = std::nullopt)
    {
        if (m_progress) {
            m_progress(fraction, title);
        }
    }

    void finish(const Result& outcome)
    {
        if (auto completion = std::exchange(m_completion, nullptr)) {
            completion(outcome);
        }
    }

    bool destructive = false;
    bool searchable = true;
    bool performable = true;
    bool hiddenFromMenu = false;
    std::optional<qsizetype> minimumItems;
    ActionItemPreparationStrategy strategy = ActionItemPreparationStrategy::none;
    bool finishesAtOnce = true;
    bool reportsCancellation = true;
    Result result = ActionResultContext{};

    QList<ActionItemList> performedItems;
    int cancelCount = 0;

private:
    QString m_identifier;
    ActionCategory m_category;
    QString m_title;
    ProgressHandler m_progress;
    Completion m_completion;
};

// An upload-like action that may not be set up.
class ConfigurableTestAction final : public TestAction, public ConfigurableAction {
public:
    ConfigurableTestAction(QString identifier, ActionCategory category, bool configured)
        : TestAction(std::move(identifier), category)
        , m_configured(configured)
    {}
    bool isConfigured() const override { return m_configured; }

private:
    bool m_configured;
};

// An action that asks something first and then hands over the items it was given, or an error.
class PreparingTestAction final : public TestAction, public ActionPreparation {
public:
    using TestAction::TestAction;

    ActionPreparation* preparation() override { return this; }
    bool hidesSourceWindowDuringPreparation() const override { return true; }
    void prepare(const ActionItemList& items, ActionPreparation::Completion completion) override
    {
        ++preparationCount;
        if (preparationError) {
            completion(std::unexpected(*preparationError));
        } else {
            completion(items);
        }
    }

    std::optional<ActionError> preparationError;
    int preparationCount = 0;
};

inline std::shared_ptr<TestAction> makeAction(const QString& identifier, ActionCategory category,
                                              const QString& title = {})
{
    return std::make_shared<TestAction>(identifier, category, title);
}

} // namespace Vantrope::Test
