// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ActionsController.h"

#include "ActionIdentifiers.h"
#include "ActionPreparation.h"
#include "ActionsControllerDelegate.h"
#include "ActionsControllerInvalidation.h"
#include "ActionsControllerMenuFactory.h"
#include "ActionsLogging.h"
#include "ConfigurableAction.h"
#include "Libraries/Core/DispatchGroup.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/FilesSnapshotGenerator.h"
#include "Preferences/Preferences.h"

#include <map>
#include <QThreadPool>
#include <QUuid>

namespace Vantrope {

namespace {

// Share targets may wait on other programs; they get threads of their own so that a slow one never
// holds up the menu. Both pools live as long as the process.
QThreadPool& shareQueryPool()
{
    static auto* pool = [] {
        auto* created = new QThreadPool;
        created->setMaxThreadCount(4);
        return created;
    }();
    return *pool;
}

QThreadPool& menuPool()
{
    static auto* pool = [] {
        auto* created = new QThreadPool;
        created->setMaxThreadCount(2);
        return created;
    }();
    return *pool;
}

QString describe(const QList<QUrl>& urls)
{
    QStringList paths;
    for (const QUrl& url : urls) {
        paths.append(url.isLocalFile() ? url.toLocalFile() : url.toString());
    }
    return QLatin1Char('[') + paths.join(QStringLiteral(", ")) + QLatin1Char(']');
}

QString describe(const Action::Result& result)
{
    QString text;
    QDebug debug(&text);
    if (result) {
        debug << *result;
    } else {
        debug << result.error();
    }
    return text;
}

} // namespace

// What the worker hands back: the actions that can run on the items, and their menu.
struct ActionsController::MenuWork {
    ActionList performable;
    ActionsControllerMenu menu;
};

namespace {

ActionList performableActions(const ActionList& actions, const ActionItemList& items)
{
    ActionList performable;
    for (const ActionPtr& action : actions) {
        if (action && actionIsConfigured(*action) && action->canPerform(items)) {
            performable.append(action);
        }
    }
    return performable;
}

} // namespace

ActionsController::ActionsController(DraggableList draggables, ActionList actions, Preferences& preferences,
                                     Services services, QObject* parent)
    : QObject(parent)
    , m_draggables(std::move(draggables))
    , m_actions(std::move(actions))
    , m_history(preferences)
    , m_shareActionsProvider(std::move(services.shareActionsProvider))
    , m_archiver(std::move(services.archiver))
    , m_operationsController(std::move(services.operationsController))
    , m_archivesFolder(std::move(services.archivesFolder))
{
    connect(&ActionsControllerInvalidation::instance(), &ActionsControllerInvalidation::invalidated, this,
            &ActionsController::invalidate);
}

ActionsController::~ActionsController()
{
    // A shelf that closes mid-upload stops the upload.
    if (m_performingAction) {
        m_performingAction->cancel();
    }
}

void ActionsController::setSupplementarySearchActions(
    const QList<ActionsControllerSupplementarySearchAction>& actions)
{
    m_supplementarySearchActions = actions;
}

void ActionsController::prepare()
{
    prepareItems({});
}

void ActionsController::prepareItems(ItemsCompletion completion)
{
    if (m_preparedMenu) {
        qCInfo(lcActions) << "Skipping action menu preparation as we already have one";
        if (completion) {
            DispatchQueue::main().async([self = QPointer(this), completion] {
                if (self && self->m_actionItems) {
                    completion(*self->m_actionItems);
                }
            });
        }
        return;
    }
    if (completion) {
        m_pendingCompletions.append(std::move(completion));
    }
    if (m_isPreparingMenu) {
        qCInfo(lcActions) << "Skipping action menu preparation as we are already preparing";
        return;
    }
    qCInfo(lcActions) << "Starting to prepare action menu...";
    m_isPreparingMenu = true;
    const QString pass = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_currentPass = pass;
    if (m_actionItems) {
        DispatchQueue::main().async([self = QPointer(this), pass, items = *m_actionItems] {
            if (self) {
                self->deliverItems(pass, items);
            }
        });
        return;
    }
    resolveDraggables(pass);
}

void ActionsController::resolveDraggables(const QString& pass)
{
    struct Resolution {
        std::map<int, ActionItem> items;
        std::optional<ActionError> error;
    };
    auto resolution = std::make_shared<Resolution>();
    auto group = std::make_shared<DispatchGroup>();

    DraggableList preparable;
    for (const DraggablePtr& draggable : std::as_const(m_draggables)) {
        if (draggable && draggable->isReady()) {
            preparable.append(draggable);
        }
    }
    for (int index = 0; index < preparable.size(); ++index) {
        group->enter();
        preparable[index]->resolveUrl([resolution, group, index](const Draggable::ResolveResult& url) {
            if (url) {
                auto item = ActionItem::fromFile(*url);
                if (item) {
                    resolution->items.insert_or_assign(index, *item);
                } else {
                    resolution->error = item.error();
                }
            } else {
                qCWarning(lcActions).noquote()
                    << QStringLiteral("Failed to resolve item for actions: ") + url.error().description;
                resolution->error = ActionError(ActionError::Kind::failedGeneratingUrl);
            }
            group->leave();
        });
    }
    group->notify(DispatchQueue::main(), [self = QPointer(this), pass, resolution] {
        if (!self || self->m_currentPass != pass) {
            return;
        }
        self->m_prepareItemsIdentifier = pass;
        if (resolution->error) {
            self->deliverItems(pass, std::unexpected(*resolution->error));
            return;
        }
        // In the shelf's order, whatever order they were resolved in.
        ActionItemList items;
        for (const auto& [index, item] : resolution->items) {
            items.append(item);
        }
        if (self->m_operationsController) {
            self->m_operationsController->setItems(actionItemUrls(items));
        }
        self->queryShareActions(pass, items);
    });
}

void ActionsController::queryShareActions(const QString& pass, const ActionItemList& items)
{
    if (!m_shareActionsProvider) {
        deliverItems(pass, items);
        return;
    }
    shareQueryPool().start([self = QPointer(this), provider = m_shareActionsProvider, pass, items] {
        ActionList shareActions = provider(actionItemUrls(items));
        DispatchQueue::main().async([self, pass, items, shareActions = std::move(shareActions)] {
            if (!self) {
                return;
            }
            if (self->m_prepareItemsIdentifier != pass) {
                qCInfo(lcActions) << "Finished preparing share actions but it took to long, the menu has "
                                     "already been modified";
            } else {
                self->insertShareActions(shareActions);
            }
            self->deliverItems(pass, items);
        });
    });
}

void ActionsController::insertShareActions(const ActionList& shareActions)
{
    for (qsizetype index = 0; index < m_actions.size(); ++index) {
        if (m_actions[index] && m_actions[index]->identifier() == ActionIdentifiers::preview) {
            for (qsizetype offset = 0; offset < shareActions.size(); ++offset) {
                m_actions.insert(index + 1 + offset, shareActions[offset]);
            }
            return;
        }
    }
}

void ActionsController::deliverItems(const QString& pass, const ItemsResult& items)
{
    if (pass != m_currentPass) {
        // Overtaken by an invalidation; the newer pass makes the menu. Its items are still good.
        if (items && !m_actionItems) {
            m_actionItems = *items;
        }
        return;
    }
    if (!items) {
        qCWarning(lcActions) << "Failed to prepare actions menu, failing silently";
        finishPass(items);
        return;
    }
    qCInfo(lcActions) << "Finished items preparation, proceeding to generate menu...";
    m_actionItems = *items;
    menuPool().start([self = QPointer(this), pass, items = *items, actions = m_actions,
                      operationItems = m_operationsController ? m_operationsController->menuItems()
                                                              : QList<OperationsProvider::MenuItem>(),
                      excluded = m_excludedCategories]() mutable {
        MenuWork work;
        work.performable = performableActions(actions, items);
        work.menu = ActionsControllerMenuFactory(work.performable, items, operationItems,
                                                 systemShareActionsLimit, excluded)
                        .makeMenu();
        // The actions go back too, so that none is destroyed on this thread if the shelf closed meanwhile.
        DispatchQueue::main().async(
            [self, pass, items, work = std::move(work), actions = std::move(actions)] {
                if (self) {
                    self->didMakeMenu(pass, items, work);
                }
            });
    });
}

void ActionsController::didMakeMenu(const QString& pass, const ActionItemList& items, const MenuWork& work)
{
    if (pass != m_currentPass) {
        return;
    }
    m_preparedMenu = work.menu;
    m_searchableElements = makeSearchElements(work.performable);
    qCInfo(lcActions).noquote() << QStringLiteral(
                                       "Finished items preparation for actions menu (items count: ") +
                                       QString::number(items.size()) + QLatin1Char(')');
    Q_EMIT searchableElementsChanged();
    finishPass(items);
}

void ActionsController::finishPass(const ItemsResult& items)
{
    m_isPreparingMenu = false;
    const QList<ItemsCompletion> completions = std::exchange(m_pendingCompletions, {});
    const QPointer self(this);
    for (const ItemsCompletion& completion : completions) {
        if (!self) {
            return;
        }
        completion(items);
    }
}

QList<ActionsController::SearchElement>
ActionsController::makeSearchElements(const ActionList& performable) const
{
    const QList<OperationsProvider::SearchElement> operations =
        m_operationsController ? m_operationsController->searchElements()
                               : QList<OperationsProvider::SearchElement>();
    return ActionsControllerSearchItemsFactory(performable, operations, m_supplementarySearchActions)
        .makeElements();
}

ActionsControllerMenu ActionsController::makeMenuNow(const ActionItemList& items)
{
    const ActionList performable = performableActions(m_actions, items);
    const QList<OperationsProvider::MenuItem> operationItems =
        m_operationsController ? m_operationsController->menuItems() : QList<OperationsProvider::MenuItem>();
    m_searchableElements = makeSearchElements(performable);
    Q_EMIT searchableElementsChanged();
    return ActionsControllerMenuFactory(performable, items, operationItems, systemShareActionsLimit,
                                        m_excludedCategories)
        .makeMenu();
}

void ActionsController::cancel()
{
    if (m_performingAction) {
        m_performingAction->cancel();
    }
    if (m_operationsController) {
        m_operationsController->cancel();
    }
    if (m_actionItemsAssembler) {
        m_actionItemsAssembler->cancel();
    }
}

void ActionsController::invalidateMenu()
{
    qCInfo(lcActions) << "Invalidating actions menu...";
    m_preparedMenu.reset();
    if (m_isPreparingMenu) {
        // The pass under way works from the old state; a new one takes over its waiting callers.
        m_isPreparingMenu = false;
        m_currentPass.clear();
        if (!m_pendingCompletions.isEmpty()) {
            prepare();
        }
    }
}

void ActionsController::invalidate()
{
    qCInfo(lcActions) << "About to invalidate actions menu and create new one";
    cancel();
    invalidateMenu();
    prepare();
}

void ActionsController::requestMenu(QPointer<QObject> sourceWindow, MenuCompletion completion)
{
    prepareItems([self = QPointer(this), sourceWindow, completion](const ItemsResult& items) {
        if (!self) {
            return;
        }
        if (!items) {
            completion(std::unexpected(items.error()));
            return;
        }
        self->m_actionContext = self->makeActionContext(sourceWindow);
        for (const ActionPtr& action : std::as_const(self->m_actions)) {
            action->setActionContext(self->m_actionContext);
        }
        self->m_isMenuShown = true;
        if (!self->m_preparedMenu) {
            self->m_preparedMenu = self->makeMenuNow(*items);
        }
        completion(*self->m_preparedMenu);
    });
}

ActionContext ActionsController::makeActionContext(const QPointer<QObject>& sourceWindow) const
{
    if (!sourceWindow) {
        return {};
    }
    ActionContext context;
    context.sourceWindow = sourceWindow;
    const auto snapshot =
        FilesSnapshotGenerator(actionItemUrls(m_actionItems.value_or(ActionItemList())), QSize(200, 200), 4)
            .generate();
    if (snapshot) {
        context.snapshot = *snapshot;
    }
    return context;
}

void ActionsController::menuDidClose()
{
    m_isMenuShown = false;
}

void ActionsController::didSelectItem(const ActionMenuEntry::ActionRow& row)
{
    if (!row.action) {
        qCWarning(lcActions).noquote()
            << QStringLiteral("Selected action ") + row.title +
                   QStringLiteral(" but the menu item does not contain an associated action");
        return;
    }
    const ActionItemList items = m_actionItems.value_or(ActionItemList());
    if (row.action->itemPreparationStrategy() != ActionItemPreparationStrategy::none) {
        prepareAction(row.action, items);
    } else {
        performAction(row.action, items);
    }
}

bool ActionsController::didSelectOperation(const QString& identifier)
{
    return m_operationsController && m_operationsController->performMenuItem(identifier);
}

void ActionsController::didChooseMenuEntry(const ActionMenuEntry& entry)
{
    if (const auto* row = std::get_if<ActionMenuEntry::ActionRow>(&entry.value)) {
        didSelectItem(*row);
    } else if (const auto* operation = std::get_if<ActionMenuEntry::OperationRow>(&entry.value)) {
        didSelectOperation(operation->item.identifier);
    }
}

bool ActionsController::performAction(const ActionSearchItem& searchItem)
{
    const QList<SearchElement> elements = m_searchableElements.value_or(QList<SearchElement>());
    const auto element =
        std::find_if(elements.begin(), elements.end(),
                     [&searchItem](const SearchElement& candidate) { return candidate.item == searchItem; });
    if (element == elements.end()) {
        qCWarning(lcActions).noquote()
            << QStringLiteral("Failed to find associated action to perform for search item ") +
                   searchItem.identifier;
        return false;
    }
    if (!m_actionItems) {
        qCWarning(lcActions).noquote() << QStringLiteral("Attempted to perform search action ") +
                                              searchItem.identifier +
                                              QStringLiteral(" but action items are missing");
        return false;
    }
    const auto& backing = element->backing;
    if (const auto* action = std::get_if<ActionsControllerSearchItemsFactory::ActionBacking>(&backing)) {
        qCInfo(lcActions) << "Performing action triggered from search item...";
        didSelectItem(
            ActionMenuEntry::ActionRow{action->action, element->item.title, element->item.iconName, true});
        return true;
    }
    if (const auto* operation =
            std::get_if<ActionsControllerSearchItemsFactory::OperationBacking>(&backing)) {
        switch (operation->element.kind) {
        case OperationsProvider::SearchElement::Kind::operationType:
            qCInfo(lcActions) << "Performing file operation triggered from search item...";
            break;
        case OperationsProvider::SearchElement::Kind::userOperation:
            qCInfo(lcActions) << "Performing user operation triggered from search item...";
            break;
        case OperationsProvider::SearchElement::Kind::applicationScript:
            qCInfo(lcActions) << "Performing application script triggered from search item...";
            break;
        }
        if (m_operationsController) {
            m_operationsController->performSearchElement(operation->element);
        }
        m_history.record(element->item.identifier);
        return true;
    }
    const auto& supplementary = std::get<ActionsControllerSearchItemsFactory::SupplementaryBacking>(backing);
    if (supplementary.perform) {
        supplementary.perform();
    }
    return true;
}

void ActionsController::reloadSupplementarySearchElements()
{
    if (!m_searchableElements) {
        return;
    }
    QList<SearchElement> elements;
    for (const SearchElement& element : std::as_const(*m_searchableElements)) {
        if (!std::holds_alternative<ActionsControllerSearchItemsFactory::SupplementaryBacking>(
                element.backing)) {
            elements.append(element);
        }
    }
    elements.append(ActionsControllerSearchItemsFactory({}, {}, m_supplementarySearchActions).makeElements());
    m_searchableElements = std::move(elements);
    Q_EMIT searchableElementsChanged();
}

void ActionsController::prepareAction(const ActionPtr& action, const ActionItemList& items)
{
    qCInfo(lcActions).noquote() << QStringLiteral("Preparing action ") + action->identifier() +
                                       QStringLiteral(" for items: ") + describe(actionItemUrls(items));
    if (ActionPreparation* preparation = action->preparation()) {
        m_actionItemsAssembler.reset();
        std::weak_ptr<Action> weakAction = action;
        preparation->prepare(items, [self = QPointer(this),
                                     weakAction](const ActionPreparation::Result& result) {
            // Back on the main thread, and never before the delegate heard that preparation started.
            DispatchQueue::main().async([self, weakAction, result] {
                const ActionPtr action = weakAction.lock();
                if (!self || !action) {
                    qCWarning(lcActions) << "Action preparation finished but the actions controller is gone";
                    return;
                }
                self->didPrepareAction(action, result);
            });
        });
    } else {
        auto assembler = std::make_unique<ActionItemsAssembler>(
            actionItemUrls(items), ActionItemsAssembler::strategyFor(action->itemPreparationStrategy()),
            m_archiver, m_archivesFolder);
        ActionItemsAssembler* raw = assembler.get();
        m_actionItemsAssembler = std::move(assembler);
        // The assembler answers on the main thread and only while it lives, so while this controller does.
        raw->assemble([this, raw, action](const ActionItemsAssembler::Result& result) {
            if (result) {
                didPrepareAction(action, *result);
            } else {
                didPrepareAction(action,
                                 std::unexpected(raw->isCancelled()
                                                     ? ActionError(ActionError::Kind::canceled)
                                                     : ActionError(ActionError::Kind::failedPreparation)));
            }
        });
    }
    qCInfo(lcActions) << "Notifying that we did start preparation";
    if (m_delegate) {
        m_delegate->didStartPreparingAction(action, *this);
    }
}

void ActionsController::didPrepareAction(const ActionPtr& action, const ItemsResult& items)
{
    if (!items) {
        qCWarning(lcActions).noquote()
            << QStringLiteral("Failed assembling items with error ") + items.error().description();
        if (m_actionItemsAssembler) {
            // Not from inside the assembler's own callback: it is still on the stack.
            DispatchQueue::main().async(
                [assembler = std::shared_ptr<ActionItemsAssembler>(std::move(m_actionItemsAssembler))] {});
        }
        if (m_delegate) {
            m_delegate->didFinishPerformingAction(action, *this, std::unexpected(items.error()));
        }
        return;
    }
    qCInfo(lcActions).noquote() << QStringLiteral("Assembled items: ") + describe(actionItemUrls(*items)) +
                                       QStringLiteral(". Proceeding to perform action now...");
    performAction(action, *items);
}

void ActionsController::performAction(const ActionPtr& action, const ActionItemList& items)
{
    if (m_delegate) {
        m_delegate->didStartPerformingAction(action, *this);
    }
    m_performingAction = action;
    m_history.record(action->identifier());

    std::weak_ptr<Action> weakAction = action;
    const QPointer self(this);
    // Both always come back through the main queue: an action that answers at once must not find
    // itself destroyed inside its own perform().
    auto progress = [self, weakAction](double fraction, const std::optional<QString>& title) {
        DispatchQueue::main().async([self, weakAction, fraction, title] {
            const ActionPtr action = weakAction.lock();
            if (!self || !action || !self->m_performingAction) {
                qCWarning(lcActions)
                    << "Action has new progress but lost self reference or lost performingAction reference!";
                return;
            }
            if (self->m_delegate) {
                self->m_delegate->didUpdateProgressForAction(action, fraction, title, *self);
            }
        });
    };
    auto completion =
        [self, weakAction](const Action::Result& result) {
            DispatchQueue::main().async([self, weakAction, result] {
                const ActionPtr action = weakAction.lock();
                if (!self || !action) {
                    qCWarning(lcActions)
                        << "Action is finished but lost self reference or lost performingAction reference!";
                    return;
                }
                self->didFinishPerformingAction(action, result);
            });
        };
    action->perform(items, std::move(progress), std::move(completion));
}

void ActionsController::didFinishPerformingAction(const ActionPtr& action, const Action::Result& result)
{
    if (m_actionItemsAssembler) {
        m_actionItemsAssembler->clear();
        m_actionItemsAssembler.reset();
    }
    m_performingAction.reset();
    qCInfo(lcActions).noquote() << QStringLiteral("Action is finished with result, result: ") +
                                       describe(result);
    // Last: the delegate may let this controller go.
    if (m_delegate) {
        m_delegate->didFinishPerformingAction(action, *this, result);
    }
}

} // namespace Vantrope
