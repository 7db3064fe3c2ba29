// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Action.h"
#include "ActionArchiver.h"
#include "ActionCategory.h"
#include "ActionContext.h"
#include "ActionControllerHistory.h"
#include "ActionItemsAssembler.h"
#include "ActionMenuEntry.h"
#include "ActionsControllerSearchItemsFactory.h"
#include "ActionsControllerSupplementarySearchAction.h"
#include "ActionSearchItem.h"
#include "Models/Draggable/Draggable.h"
#include "OperationsProvider.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

namespace Vantrope {

class ActionsControllerDelegate;
class Preferences;

// The actions of one shelf: turns its items into files, works out the menu and the search list ahead
// of time, and drives one action at a time through preparation, perform, progress and its end,
// reporting to the delegate. Lives on the main thread.
class ActionsController final : public QObject {
    Q_OBJECT

public:
    // The share targets that can take these files. Runs on a worker thread and may take its time.
    using ShareActionsProvider = std::function<ActionList(const QList<QUrl>& urls)>;
    using SearchElement = ActionsControllerSearchItemsFactory::Element;
    using ItemsResult = std::expected<ActionItemList, ActionError>;
    using MenuResult = std::expected<ActionsControllerMenu, ActionError>;
    using MenuCompletion = std::function<void(const MenuResult& menu)>;

    static constexpr int systemShareActionsLimit = 4;

    struct Services {
        // None: no share targets.
        ShareActionsProvider shareActionsProvider;
        std::shared_ptr<ActionArchiver> archiver;
        // None: no file operations in menu or search.
        std::unique_ptr<OperationsProvider> operationsController;
        // Where archives are made; empty means the reserved archives folder.
        QString archivesFolder;
    };

    // `actions` in menu order; share targets are later put behind the preview action.
    ActionsController(DraggableList draggables, ActionList actions, Preferences& preferences,
                      Services services, QObject* parent = nullptr);
    ~ActionsController() override;

    // Not owned; the delegate owns this controller.
    void setDelegate(ActionsControllerDelegate* delegate) { m_delegate = delegate; }
    ActionsControllerDelegate* delegate() const { return m_delegate; }
    void setExcludedCategories(const QList<ActionCategory>& categories) { m_excludedCategories = categories; }
    const QList<ActionCategory>& excludedCategories() const { return m_excludedCategories; }
    void setSupplementarySearchActions(const QList<ActionsControllerSupplementarySearchAction>& actions);

    // Prepares items, menu and search list in the background. Does nothing while a pass runs or once a
    // menu stands.
    void prepare();
    // Cancels the run under way; its action then reports the cancellation.
    void cancel();
    void invalidateMenu();

    // For opening the menu: prepares what is missing, writes the context made from `sourceWindow` to
    // every action and answers with the menu, or with the error that kept the items from being read.
    void requestMenu(QPointer<QObject> sourceWindow, MenuCompletion completion);
    void menuDidClose();

    // The choice of a menu row.
    void didSelectItem(const ActionMenuEntry::ActionRow& row);
    // Answers whether the operation started.
    bool didSelectOperation(const QString& identifier);
    // Whichever kind of row was chosen.
    void didChooseMenuEntry(const ActionMenuEntry& entry);
    // Runs a search entry; false when it is unknown or the items are not ready.
    bool performAction(const ActionSearchItem& searchItem);
    // The two steps of a run, also for instant actions.
    void prepareAction(const ActionPtr& action, const ActionItemList& items);
    void performAction(const ActionPtr& action, const ActionItemList& items);
    // After the supplementary entries changed (pinning) while search is open.
    void reloadSupplementarySearchElements();

    const DraggableList& draggables() const { return m_draggables; }
    const ActionList& actions() const { return m_actions; }
    const std::optional<ActionItemList>& actionItems() const { return m_actionItems; }
    const std::optional<ActionsControllerMenu>& preparedMenu() const { return m_preparedMenu; }
    bool isPreparingMenu() const { return m_isPreparingMenu; }
    bool isMenuShown() const { return m_isMenuShown; }
    const std::optional<QList<SearchElement>>& searchableElements() const { return m_searchableElements; }
    const std::optional<QString>& prepareItemsIdentifier() const { return m_prepareItemsIdentifier; }
    const ActionPtr& performingAction() const { return m_performingAction; }
    const ActionItemsAssembler* actionItemsAssembler() const { return m_actionItemsAssembler.get(); }
    const std::optional<ActionContext>& actionContext() const { return m_actionContext; }
    OperationsProvider* fileOperationsController() const { return m_operationsController.get(); }
    ActionControllerHistory& history() { return m_history; }

Q_SIGNALS:
    // The search list was made or changed.
    void searchableElementsChanged();

private:
    using ItemsCompletion = std::function<void(const ItemsResult& items)>;
    struct MenuWork;

    void prepareItems(ItemsCompletion completion);
    void resolveDraggables(const QString& pass);
    void queryShareActions(const QString& pass, const ActionItemList& items);
    void deliverItems(const QString& pass, const ItemsResult& items);
    void didMakeMenu(const QString& pass, const ActionItemList& items, const MenuWork& work);
    void finishPass(const ItemsResult& items);
    void insertShareActions(const ActionList& shareActions);
    ActionsControllerMenu makeMenuNow(const ActionItemList& items);
    QList<SearchElement> makeSearchElements(const ActionList& performable) const;
    ActionContext makeActionContext(const QPointer<QObject>& sourceWindow) const;
    void didPrepareAction(const ActionPtr& action, const ItemsResult& items);
    void didFinishPerformingAction(const ActionPtr& action, const Action::Result& result);
    void invalidate();

    DraggableList m_draggables;
    ActionList m_actions;
    ActionControllerHistory m_history;
    ShareActionsProvider m_shareActionsProvider;
    std::shared_ptr<ActionArchiver> m_archiver;
    std::unique_ptr<OperationsProvider> m_operationsController;
    QString m_archivesFolder;
    ActionsControllerDelegate* m_delegate = nullptr;
    QList<ActionCategory> m_excludedCategories;
    QList<ActionsControllerSupplementarySearchAction> m_supplementarySearchActions;

    std::optional<ActionItemList> m_actionItems;
    std::optional<ActionsControllerMenu> m_preparedMenu;
    std::optional<QList<SearchElement>> m_searchableElements;
    bool m_isPreparingMenu = false;
    bool m_isMenuShown = false;
    // The pass under way; a pass that is no longer it has been overtaken by an invalidation.
    QString m_currentPass;
    // The pass whose items were last resolved; a slow share query of an older pass leaves actions alone.
    std::optional<QString> m_prepareItemsIdentifier;
    QList<ItemsCompletion> m_pendingCompletions;

    std::unique_ptr<ActionItemsAssembler> m_actionItemsAssembler;
    ActionPtr m_performingAction;
    std::optional<ActionContext> m_actionContext;
};

} // namespace Vantrope
