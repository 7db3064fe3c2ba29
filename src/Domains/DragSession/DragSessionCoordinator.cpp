// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionCoordinator.h"

#include "AddFromClipboardAction.h"
#include "ClearShelfAction.h"
#include "Domains/Actions/ActionIdentifiers.h"
#include "Domains/Actions/ActionPreparation.h"
#include "Domains/Actions/DesktopActions.h"
#include "Domains/Actions/FileOperationsProvider.h"
#include "DragSessionLogging.h"
#include "DragSessionSettingsAction.h"
#include "DragSessionWindowPlacement.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/Localized.h"
#include "MessageWindowCenter.h"
#include "Models/Draggable/DraggableFile.h"
#include "Models/Draggable/DraggablePromise.h"
#include "Models/Draggable/DraggableText.h"
#include "PersistentDragSession.h"
#include "PersistentDragSessionStore.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"
#include "PreferencesAction.h"
#include "RemoveAction.h"
#include "RenameAction.h"

#include <algorithm>
#include <QFileInfo>
#include <QUuid>

namespace Vantrope {

namespace {

QString identifierFor(const DragSessionSource& source)
{
    if (const auto* restore = std::get_if<DragSessionSource::Restore>(&source.value)) {
        return restore->identifier;
    }
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

// Independent of order, so a reordered shelf does not count as new content.
size_t itemsHash(const DraggableList& items)
{
    QStringList keys;
    keys.reserve(items.size());
    for (const DraggablePtr& item : items) {
        keys.append(item->cacheKey());
    }
    keys.sort();
    return qHash(keys);
}

} // namespace

DragSessionCoordinator::DragSessionCoordinator(DragSessionSource source, const DragSessionLabel& label,
                                               std::unique_ptr<DragSessionItemsController> itemsController,
                                               const Dependencies& dependencies, QObject* parent)
    : QObject(parent)
    , m_id(identifierFor(source))
    , m_source(std::move(source))
    , m_label(label)
    , m_sessionStore(dependencies.sessionStore)
    , m_preferences(dependencies.preferences)
    , m_messages(dependencies.messages)
    , m_clock(dependencies.clock)
    , m_itemsController(std::move(itemsController))
    , m_pasteboardController(dependencies.clipboard)
    , m_dropIntake(dependencies.clock)
    , m_saveThrottler(saveDelay, DispatchQueue::main(), dependencies.clock)
    , m_desktopActions(dependencies.desktopActions)
    , m_copyText(dependencies.copyText)
    , m_fileOperations(dependencies.fileOperations)
    , m_openPreferences(dependencies.openPreferences)
{
    auto parts = dependencies.userInterface.makeShelf(*this, DragSessionWindowPlacement::defaultSize);
    m_view = std::move(parts.view);
    m_window = std::move(parts.window);
    if (const auto* restore = std::get_if<DragSessionSource::Restore>(&m_source.value);
        restore && restore->label) {
        m_label = *restore->label;
    }

    refreshLabel();
    const bool permanentClose = m_source.is<DragSessionSource::MenuBarDrop>() ||
                                m_source.is<DragSessionSource::MenuBar>() ||
                                m_source.is<DragSessionSource::HotKey>();
    m_view->setHasPermanentCloseButton(permanentClose);

    connect(m_itemsController.get(), &DragSessionItemsController::itemsChanged, this,
            &DragSessionCoordinator::scheduleItemsUpdate);
    connect(m_itemsController.get(), &DragSessionItemsController::itemsDeleted, this,
            &DragSessionCoordinator::handleDeletedItems);
    connect(m_itemsController.get(), &DragSessionItemsController::itemChanged, this,
            &DragSessionCoordinator::handleChangedItem);
    connect(&m_dropIntake, &DragSessionDropIntake::largeDropRead, this,
            [this](const DraggableList& files, quint64 sequenceNumber) {
                // Judged against what the shelf holds now, not when the drop began.
                if (auto rejection = DragSessionDropIntake::validate(m_itemsController->items(), files)) {
                    concludeDrop({*rejection, sequenceNumber});
                } else {
                    concludeDrop({files, sequenceNumber});
                }
            });
}

DragSessionCoordinator::~DragSessionCoordinator()
{
    m_saveThrottler.cancel();
    if (m_outlineCoordinator) {
        m_outlineCoordinator->setView(nullptr);
    }
    if (m_actionsController) {
        m_actionsController->setDelegate(nullptr);
    }
}

void DragSessionCoordinator::start(const QPointF& origin)
{
    markUsed();
    m_window->setFrameOrigin(origin);
    // A shelf the user asked for takes the keyboard. One that comes by itself (mid-drag, from a watched
    // folder or another program) must not: focus would leave the window the user works in.
    if (m_source.is<DragSessionSource::Gesture>() || m_source.is<DragSessionSource::MenuBarDrop>() ||
        m_source.is<DragSessionSource::Custom>()) {
        m_window->showWithoutActivating();
    } else {
        m_window->showAndActivate();
    }
    if (!m_source.is<DragSessionSource::Gesture>() && !m_source.is<DragSessionSource::HotKey>()) {
        m_view->playAttentionAnimation();
    }
    const DraggableList draggables = m_source.draggables();
    if (!draggables.isEmpty()) {
        for (const DraggablePtr& draggable : draggables) {
            if (auto file = std::dynamic_pointer_cast<DraggableFile>(draggable); file && file->bookmark()) {
                file->startAccessingBookmark();
            }
        }
        appendItems(draggables, m_source.is<DragSessionSource::Restore>());
        if (!m_source.is<DragSessionSource::Restore>()) {
            // Items handed over by another program are kept from the start, as dropped ones are.
            throttleSave();
        }
    }
    m_view->updateHoverState(m_window->containsMouse());
}

void DragSessionCoordinator::markUsed()
{
    static quint64 uses = 0;
    m_lastUsed = ++uses;
}

void DragSessionCoordinator::appendItems(const DraggableList& draggables, bool isRestoration)
{
    if (draggables.isEmpty()) {
        return;
    }
    markUsed();
    m_itemsController->addItems(draggables);
    m_view->addDraggables(draggables, isRestoration);
    if (m_outlineCoordinator) {
        m_outlineCoordinator->appendItems(draggables);
    }
}

void DragSessionCoordinator::playAttention()
{
    m_view->playAttentionAnimation();
}

void DragSessionCoordinator::setLabel(const DragSessionLabel& label)
{
    const bool pinChanged = label.pinned != m_label.pinned;
    m_label = label;
    // Whoever typed it (popover, editor, script), the title is one line of sane length.
    m_label.name = label.name ? DragSessionLabel::cleanName(*label.name) : std::nullopt;
    refreshLabel();
    throttleSave();
    if (pinChanged && m_actionsController) {
        // Search offers pin or unpin by the state.
        m_actionsController->reloadSupplementarySearchElements();
    }
}

void DragSessionCoordinator::refreshLabel()
{
    m_view->setLabel(m_label);
    m_window->applyLabel(m_label);
    m_window->setTitle(m_label.name.value_or(QString()));
    if (const auto settings = m_settingsAction.lock(); settings && m_actionsController) {
        settings->setLabel(m_label);
        m_actionsController->invalidateMenu();
        m_actionsController->prepare();
    }
    Q_EMIT labelChanged();
}

void DragSessionCoordinator::throttleSave()
{
    m_saveThrottler.throttle([self = QPointer(this)] {
        if (self) {
            self->saveSession();
        }
    });
}

void DragSessionCoordinator::saveSession(std::function<void()> completion)
{
    const auto complete = [completion = std::move(completion)] {
        if (completion) {
            DispatchQueue::main().async(completion);
        }
    };
    const DraggableList& items = m_itemsController->items();
    if (items.isEmpty()) {
        if (m_sessionStore.session(m_id)) {
            qCInfo(lcDragSession) << "Deleting existing session as we don't have any items anymore";
            m_sessionStore.deleteSession(m_id);
        }
        qCInfo(lcDragSession) << "Bailing out as we don't have any items to save";
        complete();
        return;
    }
    DragSessionItemsController* controller = m_itemsController.get();
    const auto bookmarks = PersistentDragSession::collectBookmarks(
        items, [controller](quint64 number) { return controller->bookmark(number); });
    if (bookmarks.isEmpty()) {
        qCCritical(lcDragSession) << "Failed to obtain bookmarks for items";
        complete();
        return;
    }
    QStringList order;
    order.reserve(items.size());
    for (const DraggablePtr& item : items) {
        order.append(item->cacheKey());
    }
    auto session =
        std::make_shared<PersistentDragSession>(m_id, m_clock.currentDateTime(), m_label, bookmarks, order);
    m_sessionStore.addSession(std::move(session), complete);
}

void DragSessionCoordinator::stop(bool save, std::function<void()> completion)
{
    qCInfo(lcDragSession).noquote() << "Stopping session" << m_id
                                    << (save ? "after saving it" : "without saving");
    m_isStopping = true;
    if (!save) {
        teardown(completion);
        return;
    }
    m_window->setAlphaValue(0, false);
    saveSession([self = QPointer(this), completion] {
        if (self) {
            self->teardown(completion);
        }
    });
}

void DragSessionCoordinator::teardown(const std::function<void()>& completion)
{
    if (m_hasStopped) {
        return;
    }
    m_hasStopped = true;
    m_saveThrottler.cancel();
    if (m_isSettingsPopoverOpen) {
        m_view->dismissSettings();
    }
    if (m_outlineCoordinator) {
        m_outlineCoordinator->close();
    }
    m_itemsController->removeAllItems();
    if (m_actionsController) {
        // Its run ends without telling a shelf that is gone.
        m_actionsController->setDelegate(nullptr);
        m_actionsController->cancel();
        dropActionsController();
    }
    m_window->close();
    // The delegate may let go of this coordinator; nothing of it is touched after this line.
    if (m_delegate) {
        m_delegate->coordinatorDidStop(*this);
    }
    if (completion) {
        completion();
    }
}

void DragSessionCoordinator::clear()
{
    m_pasteboardController.reset();
    dropFromOutline(m_itemsController->items());
    m_itemsController->removeAllItems();
    m_label.pinned = false;
    refreshLabel();
    throttleSave();
    m_pendingInstantAction.reset();
}

void DragSessionCoordinator::scheduleItemsUpdate()
{
    // Debounced: bursts of changes reach the action machinery once.
    const quint64 generation = ++m_itemsUpdateGeneration;
    m_clock.schedule(itemsUpdateDelay, DispatchQueue::main(), [self = QPointer(this), generation] {
        if (self && self->m_itemsUpdateGeneration == generation) {
            self->itemsUpdate();
        }
    });
}

void DragSessionCoordinator::itemsUpdate()
{
    if (m_isStopping) {
        return;
    }
    if (m_supressItemPreparationOnItemsUpdate) {
        qCInfo(lcDragSession) << "supressItemPreparationOnItemsUpdate is true, so ignoring updates...";
        return;
    }
    const DraggableList& items = m_itemsController->items();
    if (items.isEmpty() && m_label.pinned) {
        m_label.pinned = false;
        refreshLabel();
        throttleSave();
    }
    prepareActionsIfNeeded(items);
}

void DragSessionCoordinator::prepareActionsIfNeeded(const DraggableList& items)
{
    const size_t hash = itemsHash(items);
    if (m_actionsController && m_preparedItemsHash && m_preparedItemsCount == items.size() &&
        *m_preparedItemsHash == hash) {
        qCInfo(lcDragSession) << "Skipping item preparation as nothing changed";
        return;
    }
    if (m_actionsController &&
        (m_actionsController->performingAction() || m_actionsController->actionItemsAssembler())) {
        // A run is under way on the old items; its end makes the controller for the new ones.
        qCInfo(lcDragSession) << "Items changed during an action; preparing once it has finished";
        return;
    }
    m_supressItemPreparationOnItemsUpdate = false;
    m_hasPreparedMenu = false;
    if (items.isEmpty()) {
        qCInfo(lcDragSession) << "Resetting state as we don't have any items";
        m_preparedItemsHash.reset();
        m_preparedItemsCount = 0;
        if (m_actionsController) {
            m_actionsController->cancel();
            dropActionsController();
        }
        return;
    }
    qCInfo(lcDragSession).noquote()
        << QStringLiteral("Preparing the actions controller for %1 items").arg(items.size());
    m_preparedItemsHash = hash;
    m_preparedItemsCount = items.size();
    if (m_actionsController) {
        m_actionsController->setDelegate(nullptr);
        m_actionsController->cancel();
        dropActionsController();
    }

    ActionsController::Services services;
    if (m_desktopActions) {
        DesktopActions* desktop = m_desktopActions;
        services.shareActionsProvider = [desktop](const QList<QUrl>& urls) {
            return desktop->makeShareActions(urls);
        };
        services.archiver = desktop->archiver();
    }
    if (m_fileOperations) {
        auto operations = std::make_unique<OperationsController>(*m_fileOperations);
        operations->setDelegate(this);
        services.operationsController =
            std::make_unique<FileOperationsProvider>(std::move(operations), m_preferences);
    }
    m_actionsController =
        std::make_unique<ActionsController>(items, makeActions(), m_preferences, std::move(services));
    m_actionsController->setDelegate(this);
    m_actionsController->setSupplementarySearchActions(makeSupplementarySearchActions());
    connect(m_actionsController.get(), &ActionsController::searchableElementsChanged, this, [this] {
        m_hasPreparedMenu = m_actionsController && m_actionsController->preparedMenu().has_value();
    });
    m_actionsController->prepare();
}

ActionsController* DragSessionCoordinator::ensureActionsController()
{
    if (!m_actionsController && !m_hasStopped) {
        prepareActionsIfNeeded(m_itemsController->items());
    }
    return m_actionsController.get();
}

void DragSessionCoordinator::dropActionsController()
{
    m_hasPreparedMenu = false;
    m_preparedItemsHash.reset();
    m_preparedItemsCount = 0;
    if (auto controller = std::move(m_actionsController)) {
        controller->disconnect(this);
        // Often called from inside the controller's own report: it goes once that has returned.
        DispatchQueue::main().async(
            [controller = std::shared_ptr<ActionsController>(std::move(controller))] {});
    }
}

ActionList DragSessionCoordinator::makeActions()
{
    const QPointer self(this);
    ActionList actions;
    ActionList shelfActions;
    ActionPtr copyToPasteboard;
    if (m_desktopActions) {
        for (const ActionPtr& action : m_desktopActions->makeItemActions()) {
            if (!action) {
                continue;
            }
            if (action->identifier() == ActionIdentifiers::copyToPasteboard) {
                copyToPasteboard = action;
            } else if (action->category() == ActionCategory::shelf) {
                shelfActions.append(action);
            } else {
                actions.append(action);
            }
        }
    }
    actions.append(
        std::make_shared<AddFromClipboardAction>(!m_pasteboardController.draggables().isEmpty(),
                                                 [self] { return self ? self->addFromClipboard() : 0; }));
    if (copyToPasteboard) {
        actions.append(copyToPasteboard);
    }
    actions.append(shelfActions);
    actions.append(
        std::make_shared<RenameAction>([self](const ActionItem& item, const Action::Completion& completion) {
            if (self) {
                self->renameItem(item, completion);
            } else {
                completion(std::unexpected(ActionError(ActionError::Kind::canceled)));
            }
        }));
    actions.append(std::make_shared<RemoveAction>([self](const ActionItemList& items) {
        if (self) {
            self->removeItems(self->draggablesFor(items));
        }
    }));
    for (const auto context : {MoveToNewShelfAction::Context::move, MoveToNewShelfAction::Context::copy}) {
        actions.append(std::make_shared<MoveToNewShelfAction>(
            context, [self](MoveToNewShelfAction::Context context, const ActionItemList& items) {
                if (self) {
                    self->moveToNewShelf(context, items);
                }
            }));
    }
    actions.append(std::make_shared<ClearShelfAction>([self] {
        if (self) {
            self->clear();
            self->m_view->removeAllDraggables(true);
        }
    }));
    auto settings = std::make_shared<DragSessionSettingsAction>(m_label, [self] {
        // Run from the menu, which has just closed: the popover opens once it is gone.
        DispatchQueue::main().async([self] {
            if (self) {
                self->showSettingsPopover();
            }
        });
    });
    m_settingsAction = settings;
    actions.append(settings);
    actions.append(std::make_shared<PreferencesAction>([self] {
        if (self && self->m_openPreferences) {
            self->m_openPreferences();
        } else {
            qCWarning(lcDragSession) << "No settings window to open";
        }
    }));
    return actions;
}

QList<ActionsControllerSupplementarySearchAction> DragSessionCoordinator::makeSupplementarySearchActions()
{
    const QPointer self(this);
    ActionsControllerSupplementarySearchAction pin{
        ActionSearchItem{QStringLiteral("custom_pin"),
                         Localized("shelf-settings-action-menu.pin-shelf", "Pin Shelf"),
                         QStringLiteral("window-pin"),
                         {}},
        [self] { return self && !self->m_label.pinned; },
        [self] {
            if (!self) {
                return false;
            }
            self->setPinned(true);
            return true;
        }};
    ActionsControllerSupplementarySearchAction unpin{
        ActionSearchItem{QStringLiteral("custom_unpin"),
                         Localized("shelf-settings-action-menu.unpin-shelf", "Unpin Shelf"),
                         QStringLiteral("window-unpin"),
                         {}},
        [self] { return self && self->m_label.pinned; },
        [self] {
            if (!self) {
                return false;
            }
            self->setPinned(false);
            return true;
        }};
    return {pin, unpin};
}

void DragSessionCoordinator::setPinned(bool pinned)
{
    m_label.pinned = pinned;
    refreshLabel();
    throttleSave();
    if (m_actionsController) {
        m_actionsController->reloadSupplementarySearchElements();
    }
}

DraggableList DragSessionCoordinator::draggablesFor(const ActionItemList& items) const
{
    if (!m_actionsController) {
        return {};
    }
    // The controller made one file per ready item, in the shelf's order.
    DraggableList ready;
    for (const DraggablePtr& draggable : m_actionsController->draggables()) {
        if (draggable && draggable->isReady()) {
            ready.append(draggable);
        }
    }
    const auto prepared = m_actionsController->actionItems().value_or(ActionItemList());
    DraggableList matching;
    for (const ActionItem& item : items) {
        const auto index = prepared.indexOf(item);
        if (index >= 0 && index < ready.size()) {
            matching.append(ready[index]);
        }
    }
    return matching;
}

void DragSessionCoordinator::removeItems(const DraggableList& draggables)
{
    dropFromOutline(draggables);
    for (const DraggablePtr& draggable : draggables) {
        m_view->removeDraggable(draggable);
        m_itemsController->remove(draggable);
    }
    throttleSave();
}

void DragSessionCoordinator::moveToNewShelf(MoveToNewShelfAction::Context context,
                                            const ActionItemList& items)
{
    const DraggableList draggables = draggablesFor(items);
    if (draggables.isEmpty() || !m_delegate) {
        qCWarning(lcDragSession) << "Nothing to put on a new shelf";
        return;
    }
    if (context == MoveToNewShelfAction::Context::move) {
        removeItems(draggables);
    }
    m_delegate->openNewSession(draggables, m_window->screen());
}

int DragSessionCoordinator::addFromClipboard()
{
    const DraggableList pasteable = m_pasteboardController.draggables();
    DraggableList added;
    const DraggableList& held = m_itemsController->items();
    for (const DraggablePtr& draggable : pasteable) {
        const bool present = std::any_of(held.cbegin(), held.cend(), [&draggable](const DraggablePtr& item) {
            return item->cacheKey() == draggable->cacheKey();
        });
        if (!present) {
            added.append(draggable);
        }
    }
    appendItems(added);
    if (!added.isEmpty()) {
        throttleSave();
    }
    return int(added.size());
}

void DragSessionCoordinator::renameItem(const ActionItem& item, const Action::Completion& completion)
{
    const DraggableList draggables = draggablesFor({item});
    const auto file =
        draggables.isEmpty() ? nullptr : std::dynamic_pointer_cast<DraggableFile>(draggables.first());
    if (!file || !file->url() || !file->url()->isLocalFile()) {
        completion(std::unexpected(ActionError::underlying(
            Localized("action.rename.error.no-file", "Only a file on disk can be renamed."))));
        return;
    }
    const QString path = file->url()->toLocalFile();
    m_view->editInline(QFileInfo(path).fileName(), [self = QPointer(this), file, path,
                                                    completion](const std::optional<QString>& name) {
        if (!self || !name) {
            completion(std::unexpected(ActionError(ActionError::Kind::canceled)));
            return;
        }
        const auto renamed = RenameAction::renameFile(path, *name);
        if (!renamed) {
            self->showMessage(renamed.error().description, Message::Icon::warning, failureMessageDuration);
            completion(std::unexpected(ActionError::underlying(renamed.error().description)));
            return;
        }
        if (auto replacement = DraggableFile::make(QUrl::fromLocalFile(*renamed))) {
            const bool held = self->m_itemsController->items().contains(file);
            if (held) {
                if (self->m_outlineCoordinator) {
                    self->m_outlineCoordinator->replaceItem(file, replacement);
                }
                self->m_itemsController->remove(file);
                self->m_itemsController->addItems({replacement});
                self->m_view->replaceDraggable(file, replacement);
                self->throttleSave();
            }
        }
        completion(ActionResultContext{});
    });
}

void DragSessionCoordinator::didRequestActionsMenu()
{
    markUsed();
    ActionsController* controller = ensureActionsController();
    if (!controller) {
        return;
    }
    QPointer<QObject> sourceWindow(dynamic_cast<QObject*>(m_window.get()));
    controller->requestMenu(sourceWindow, [self = QPointer(this)](const ActionsController::MenuResult& menu) {
        if (!self) {
            return;
        }
        if (!menu) {
            self->m_messages.show(
                self->m_window->windowNumber(),
                Message::highlighted(Message::Icon::error,
                                     Localized("actions.alert.items-preparation-error.message",
                                               "The items could not be prepared"),
                                     Localized("actions.alert.items-preparation-error.informative-text",
                                               "One or more items on the shelf can no longer be read.")),
                failureMessageDuration);
            return;
        }
        self->m_view->showActionsMenu(*menu);
    });
}

void DragSessionCoordinator::didChooseActionsMenuEntry(const ActionMenuEntry& entry)
{
    if (m_actionsController) {
        m_actionsController->didChooseMenuEntry(entry);
    }
}

void DragSessionCoordinator::didCloseActionsMenu()
{
    if (m_actionsController) {
        m_actionsController->menuDidClose();
    }
    m_view->updateHoverState(m_window->containsMouse());
}

void DragSessionCoordinator::availableActions(std::function<void(const AvailableActions& actions)> completion)
{
    ActionsController* controller = ensureActionsController();
    if (!controller) {
        completion(QList<ActionSearchItem>());
        return;
    }
    controller->requestMenu(
        {}, [self = QPointer(this), completion](const ActionsController::MenuResult& menu) {
            if (!self || !self->m_actionsController) {
                completion(std::unexpected(ActionError(ActionError::Kind::canceled)));
                return;
            }
            self->m_actionsController->menuDidClose();
            if (!menu) {
                completion(std::unexpected(menu.error()));
                return;
            }
            QList<ActionSearchItem> items;
            for (const auto& element : self->m_actionsController->searchableElements().value_or(
                     QList<ActionsController::SearchElement>())) {
                items.append(element.item);
            }
            completion(items);
        });
}

void DragSessionCoordinator::showSearch(const QString& text)
{
    if (m_isSearchShown || isOutlineOpen()) {
        return;
    }
    ActionsController* controller = ensureActionsController();
    if (!controller) {
        return;
    }
    if (!controller->searchableElements()) {
        qCInfo(lcDragSession)
            << "Actions controller does not have the items prepared, forcing preparation now...";
    }
    m_isSearchShown = true;
    markUsed();
    availableActions([self = QPointer(this), text](const AvailableActions& actions) {
        if (!self) {
            return;
        }
        if (!actions || !self->m_actionsController) {
            self->m_isSearchShown = false;
            return;
        }
        DragSessionView::SearchRequest request;
        for (const ActionSearchItem& item : *actions) {
            request.items.append(SearchItem{item.identifier, item.title, item.iconName, item.keywords});
        }
        request.recentIdentifiers = self->m_actionsController->history().identifiers();
        request.suggestedIdentifiers = ActionsControllerSearchItemsFactory::suggestedIdentifiers();
        request.placeholder = Localized("shelf-search.placeholder", "Search actions");
        request.initialText = text;
        const QList<ActionSearchItem> offered = *actions;
        request.select = [self, offered](const QString& identifier) {
            if (!self) {
                return;
            }
            self->m_isSearchShown = false;
            self->m_view->dismissSearch();
            const auto item =
                std::find_if(offered.cbegin(), offered.cend(), [&identifier](const auto& candidate) {
                    return candidate.identifier == identifier;
                });
            if (item != offered.cend() && self->m_actionsController) {
                self->m_actionsController->performAction(*item);
            }
        };
        request.dismiss = [self] {
            if (self) {
                self->m_isSearchShown = false;
                self->m_view->updateHoverState(self->m_window->containsMouse());
            }
        };
        self->m_view->presentSearch(request);
    });
}

void DragSessionCoordinator::runAction(const QString& identifier, RunCompletion completion)
{
    runAction(identifier, {}, std::move(completion));
}

OperationSettings DragSessionCoordinator::operationSettings(const QString& identifier) const
{
    OperationsProvider* operations =
        m_actionsController ? m_actionsController->fileOperationsController() : nullptr;
    return operations ? operations->settings(identifier) : OperationSettings();
}

void DragSessionCoordinator::runAction(const QString& identifier, const QVariantMap& values,
                                       RunCompletion completion)
{
    availableActions([self = QPointer(this), identifier, values,
                      completion](const AvailableActions& actions) {
        if (!self || !actions) {
            completion(std::unexpected(actions ? ActionError(ActionError::Kind::canceled) : actions.error()));
            return;
        }
        const auto found = std::find_if(actions->cbegin(), actions->cend(), [&identifier](const auto& item) {
            return item.identifier == identifier;
        });
        if (found == actions->cend() || !self->m_actionsController) {
            completion(std::unexpected(ActionError::underlying(
                Localized("actions.run.not-on-offer", "\"%1\" is not on offer for this shelf's items.")
                    .arg(identifier))));
            return;
        }
        const auto& elements = *self->m_actionsController->searchableElements();
        const auto element =
            std::find_if(elements.cbegin(), elements.cend(),
                         [&found](const auto& candidate) { return candidate.item == *found; });
        if (const auto* backing =
                std::get_if<ActionsControllerSearchItemsFactory::ActionBacking>(&element->backing)) {
            self->m_runCompletions.append({backing->action, completion});
            self->m_actionsController->performAction(*found);
            return;
        }
        if (std::holds_alternative<ActionsControllerSearchItemsFactory::OperationBacking>(element->backing)) {
            OperationsProvider* operations = self->m_actionsController->fileOperationsController();
            if (!operations || self->m_operationRunCompletion) {
                completion(std::unexpected(ActionError(ActionError::Kind::reserved)));
                return;
            }
            self->m_operationRunCompletion = completion;
            self->m_operationOutputs.clear();
            const auto started = operations->performWithValues(identifier, values);
            if (!started) {
                self->m_operationRunCompletion = {};
                completion(std::unexpected(ActionError::underlying(started.error())));
            } else if (self && !self->m_isOperationRunning && self->m_operationRunCompletion) {
                // Ended at once (an info window), or never ran in the background.
                std::exchange(self->m_operationRunCompletion, {})(ActionResultContext{});
            }
            return;
        }
        if (!values.isEmpty()) {
            completion(std::unexpected(ActionError::underlying(
                Localized("actions.run.no-settings", "\"%1\" takes no settings.").arg(identifier))));
            return;
        }
        // Pinning ends at once.
        if (self->m_actionsController->performAction(*found)) {
            completion(ActionResultContext{});
        } else {
            completion(std::unexpected(ActionError(ActionError::Kind::reserved)));
        }
    });
}

void DragSessionCoordinator::didStartPreparingAction(const ActionPtr& action, ActionsController&)
{
    m_hasPreparedMenu = false;
    if (ActionPreparation* preparation = action->preparation();
        preparation && preparation->hidesSourceWindowDuringPreparation()) {
        m_window->setAlphaValue(0, true);
        return;
    }
    setShareState({DragSessionActionState::Loading{
        0, Localized("content.share-progress.preparing.label", "Preparing…")}});
}

void DragSessionCoordinator::didStartPerformingAction(const ActionPtr& action, ActionsController&)
{
    markUsed();
    m_window->setAlphaValue(action->hidesSourceWindowDuringAction() ? 0 : 1, true);
    // These change the shelf while they run: the change must not rebuild the controller under them.
    if (std::dynamic_pointer_cast<RemoveAction>(action) || std::dynamic_pointer_cast<RenameAction>(action) ||
        std::dynamic_pointer_cast<MoveToNewShelfAction>(action)) {
        m_supressItemPreparationOnItemsUpdate = true;
    }
}

void DragSessionCoordinator::didUpdateProgressForAction(const ActionPtr&, double progress,
                                                        const std::optional<QString>& progressTitle,
                                                        ActionsController&)
{
    if (!m_actionsController) {
        qCWarning(lcDragSession)
            << "Got progress update but we dont have a reference to self.actionsController!";
        return;
    }
    QString title;
    if (progressTitle) {
        title = *progressTitle;
    } else if (const auto* loading = std::get_if<DragSessionActionState::Loading>(&m_shareState.value)) {
        title = loading->title;
    }
    setShareState({DragSessionActionState::Loading{progress, title}});
}

void DragSessionCoordinator::didFinishPerformingAction(const ActionPtr& action, ActionsController&,
                                                       const Action::Result& result)
{
    const QPointer self(this);
    for (qsizetype index = 0; index < m_runCompletions.size(); ++index) {
        const auto waiting = m_runCompletions[index].first.lock();
        if (!waiting || waiting == action) {
            const RunCompletion completion = m_runCompletions.takeAt(index--).second;
            if (waiting && completion) {
                completion(result);
            }
        }
    }
    if (!self) {
        return;
    }
    if (result) {
        handleActionCompletion(action, *result);
    } else {
        handleActionError(action, result.error());
    }
    if (!self || m_hasStopped) {
        return;
    }
    m_supressItemPreparationOnItemsUpdate = false;
    m_view->updateHoverState(m_window->containsMouse());
    dropActionsController();
    // The next menu is made ahead again, for what the shelf holds after the run.
    scheduleItemsUpdate();
}

void DragSessionCoordinator::handleActionCompletion(const ActionPtr& action,
                                                    const ActionResultContext& context)
{
    const QPointer self(this);
    if (action->isDestructive()) {
        stop(true);
    } else {
        m_window->setAlphaValue(1, true);
    }
    if (!self) {
        return;
    }
    if (const auto* link = std::get_if<ActionResultContext::Link>(&context.value)) {
        setShareState({DragSessionActionState::Confirmation{link->url}});
        if (m_copyText) {
            m_copyText(link->url.toString(QUrl::FullyEncoded));
        }
    } else if (const auto* message = std::get_if<ActionResultContext::Message>(&context.value)) {
        m_messages.show(m_window->windowNumber(),
                        Message::plain(Message::Icon::info, message->body,
                                       action->identifier() + QStringLiteral("_message")),
                        actionMessageDuration);
    } else {
        setShareState({DragSessionActionState::None{}});
    }
}

void DragSessionCoordinator::handleActionError(const ActionPtr& action, const ActionError& error)
{
    m_window->setAlphaValue(1, true);
    if (error.kind() == ActionError::Kind::canceled) {
        setShareState({DragSessionActionState::None{}});
        return;
    }
    if (action->category() == ActionCategory::upload) {
        setShareState({DragSessionActionState::Error{
            Localized("content.share-progress.error.general", "Could not upload"), error.description()}});
    } else if (action->category() == ActionCategory::shelf &&
               std::holds_alternative<DragSessionActionState::Loading>(m_shareState.value)) {
        setShareState({DragSessionActionState::Error{Localized("general.error.title", "Something went wrong"),
                                                     error.description()}});
    }
}

bool DragSessionCoordinator::shouldAcceptDrag(const QMimeData& data)
{
    if (!m_dropIntake.enter(data)) {
        return false;
    }
    if (m_preferences.value(PreferenceKeys::shelfRetractionEnabled) && m_itemsController->items().isEmpty()) {
        m_retractOnItemDrop = true;
    }
    return true;
}

void DragSessionCoordinator::didExitDrag()
{
    if (m_dropIntake.exit()) {
        // The drag went elsewhere: nothing to save, but what waited for its drop is over.
        didDragItems({false, DragEvent::Kind::passedBy}, false);
    }
}

bool DragSessionCoordinator::isReceivingDrop() const
{
    return m_dropIntake.isDraggingEntered() || m_dropIntake.isDragInProgress();
}

bool DragSessionCoordinator::didDrop(const InboundDrop& drop)
{
    if (!m_dropIntake.isDraggingEntered()) {
        return false;
    }
    const std::optional<DragSessionDropIntake::Outcome> outcome = m_dropIntake.drop(
        drop.data, drop.directSaveName, drop.promiseFactory,
        m_preferences.value(PreferenceKeys::draggableTextForcesPlainText), m_itemsController->items());
    // A large drop is taken now and read in a moment.
    return !outcome || concludeDrop(*outcome);
}

bool DragSessionCoordinator::concludeDrop(const DragSessionDropIntake::Outcome& outcome)
{
    const QPointer<DragSessionCoordinator> self(this);
    const auto* draggables = std::get_if<DraggableList>(&outcome.value);
    if (draggables) {
        appendItems(*draggables);
        // What the shelf shows after a drop is the items, not an old message.
        m_messages.hide(m_window->windowNumber());
        throttleSave();
        receivePromises(*draggables, outcome.sequenceNumber);
    } else {
        showDropFailure(std::get<DragSessionDropIntake::Rejection>(outcome.value));
    }
    if (self) {
        m_dropIntake.finish();
        m_view->endInboundDrop();
    }
    return draggables != nullptr;
}

void DragSessionCoordinator::receivePromises(const DraggableList& draggables, quint64 sequenceNumber)
{
    for (const DraggablePtr& draggable : draggables) {
        const auto promise = std::dynamic_pointer_cast<DraggablePromise>(draggable);
        if (!promise) {
            continue;
        }
        std::weak_ptr<DraggablePromise> weak = promise;
        promise->onReceives([self = QPointer(this), weak](const Draggable::ResolveResult& result) {
            const auto received = weak.lock();
            if (!self || !received) {
                return;
            }
            if (!result) {
                qCWarning(lcDragSession).noquote()
                    << QStringLiteral("Failed to receive promise with error ") + result.error().description;
                self->failReceiving(received, result.error());
                return;
            }
            DraggableList additional;
            for (const auto& file : received->additionalDraggables()) {
                additional.append(file);
            }
            if (!additional.isEmpty()) {
                self->appendItems(additional);
                self->throttleSave();
            }
            self->m_view->refreshDraggable(received);
        });
        promise->receiveFiles(sequenceNumber);
    }
}

void DragSessionCoordinator::didDragItems(const DragEvent& event, bool hasMoved)
{
    if (event.endedInDrop) {
        const bool closes = hasMoved || m_preferences.value(PreferenceKeys::alwaysCloseShelf);
        // Files still being received were not in the drag; closing now would lose them.
        const auto stillArriving = [this] {
            const DraggableList items = m_itemsController->items();
            return std::any_of(items.cbegin(), items.cend(),
                               [](const DraggablePtr& item) { return !item->isReady(); });
        };
        if (closes && !stillArriving()) {
            stop(true);
        } else {
            saveSession();
        }
        const int drops = m_preferences.value(PreferenceKeys::numberOfDrops) + 1;
        m_preferences.setValue(PreferenceKeys::numberOfDrops, drops);
    } else {
        if (event.kind == DragEvent::Kind::ended && m_retractOnItemDrop) {
            m_window->retract();
        }
        if (event.kind != DragEvent::Kind::passedBy) {
            throttleSave();
        }
        m_messages.hide(m_window->windowNumber());
    }
    m_retractOnItemDrop = false;
}

void DragSessionCoordinator::showDropFailure(const DragSessionDropIntake::Rejection& rejection)
{
    const DragError& error = rejection.error;
    const int rejectedCount = rejection.count;
    m_retractOnItemDrop = false;
    qCInfo(lcDragSession) << "Showing mesages controller...";
    const bool hasItems = !m_itemsController->items().isEmpty();
    QString text;
    if (error.kind == DragError::Kind::rejected && error.rejection == DragError::RejectionType::empty) {
        text = hasItems && rejectedCount > 0
                   ? Localized("shelf.drag-error.empty-append", "%n empty file(s) could not be added.",
                               rejectedCount)
                   : Localized("shelf.drag-error.empty-item", "Empty files can't be put on a shelf.");
    } else if (error.kind == DragError::Kind::rejected &&
               error.rejection == DragError::RejectionType::existing) {
        text = Localized("shelf.drag-error.already-present", "This is already on the shelf.");
    } else if (error.kind == DragError::Kind::rejected &&
               error.rejection == DragError::RejectionType::combined) {
        text = Localized("shelf.drag-error.empty-and-existing-append",
                         "%n item(s) were empty or already on the shelf and were not added.", rejectedCount);
    } else {
        text = Localized("shelf.drag-error.general", "These items can't be added to the shelf.");
    }
    showMessage(text, Message::Icon::warning, failureMessageDuration);
    if (!hasItems) {
        // The shelf will not close by itself now: give the user a way to close it.
        m_view->setHasPermanentCloseButton(true);
    }
}

void DragSessionCoordinator::didSelectCloseButton(bool alternateModifier)
{
    if (alternateModifier && m_shareState.isNone()) {
        clear();
        m_view->setHasPermanentCloseButton(true);
        m_view->removeAllDraggables(true);
        saveSession();
        return;
    }
    stop(true);
}

void DragSessionCoordinator::didSelectRestoreButton()
{
    const auto sessions = m_sessionStore.sessions();
    if (sessions.isEmpty()) {
        qCInfo(lcDragSession) << "No session to restore";
        return;
    }
    const auto& session = sessions.first();
    if (!session->validate()) {
        qCInfo(lcDragSession) << "Failed to validate draggables";
        return;
    }
    const auto draggables = session->draggables();
    if (!draggables || draggables->isEmpty()) {
        qCInfo(lcDragSession) << "Session does not have any draggables";
        return;
    }
    appendItems(*draggables, true);
}

void DragSessionCoordinator::failReceiving(const DraggablePtr& draggable, const DraggableError& error)
{
    dropFromOutline({draggable});
    m_view->removeDraggable(draggable);
    m_itemsController->remove(draggable);
    throttleSave();
    // The item vanishes from the pile; say why, or it looks as if the drop was lost.
    m_messages.show(
        m_window->windowNumber(),
        Message::highlighted(Message::Icon::error,
                             Localized("shelf.receive-failed.title", "A file could not be received"),
                             error.description),
        failureMessageDuration);
}

void DragSessionCoordinator::handleDeletedItems(
    const QList<DragSessionItemsController::DeleteContext>& contexts)
{
    if (contexts.isEmpty()) {
        return;
    }
    for (const auto& context : contexts) {
        dropFromOutline({context.draggable});
        m_view->removeDraggable(context.draggable);
        m_itemsController->remove(context.draggable);
    }
    const QString text = contexts.size() >= 2
                             ? Localized("shelf.items-removed-disk.body",
                                         "%n items were removed from the shelf because their files are gone.",
                                         int(contexts.size()))
                             : Localized("shelf.item-removed-disk.body",
                                         "\"%1\" was removed from the shelf because its file is gone.")
                                   .arg(contexts.first().url.fileName());
    showMessage(text, Message::Icon::info, failureMessageDuration);
}

void DragSessionCoordinator::handleChangedItem(const DragSessionItemsController::ItemChangeContext& context)
{
    // The report may come after the shelf let go of the item itself (it renamed the file, or the item
    // was removed): adding its new place now would put the file on the shelf twice.
    if (!m_itemsController->items().contains(context.draggable)) {
        return;
    }
    auto replacement = DraggableFile::make(context.newUrl);
    if (!replacement) {
        return;
    }
    if (m_outlineCoordinator) {
        m_outlineCoordinator->replaceItem(context.draggable, replacement);
    }
    m_itemsController->remove(context.draggable);
    m_itemsController->addItems({replacement});
    m_view->replaceDraggable(context.draggable, replacement);
    throttleSave();
}

void DragSessionCoordinator::replaceContent(const QList<QUrl>& urls)
{
    DraggableList draggables;
    for (const QUrl& url : urls) {
        if (auto file = DraggableFile::make(url)) {
            draggables.append(std::move(file));
        }
    }
    if (draggables.isEmpty()) {
        qCInfo(lcDragSession)
            << "Was required to reload content but it failed, so we will just show the initial content";
        return;
    }
    dropFromOutline(m_itemsController->items());
    m_itemsController->removeAllItems();
    m_view->removeAllDraggables(false);
    qCInfo(lcDragSession).noquote()
        << QStringLiteral("Reloading content with %1 items...").arg(draggables.size());
    appendItems(draggables);
}

// The file operations' reports.

void DragSessionCoordinator::operationDidStart(OperationsController&, const QString& title)
{
    markUsed();
    m_isOperationRunning = true;
    m_operationOutputs.clear();
    // The run changes the items (renames, moves): the change must not rebuild the controller under it.
    m_supressItemPreparationOnItemsUpdate = true;
    m_window->setAlphaValue(1, true);
    setShareState({DragSessionActionState::Loading{
        0, title.isEmpty() ? Localized("content.share-progress.loading.label", "Working…") : title}});
}

void DragSessionCoordinator::operationDidProgress(OperationsController&, double fraction,
                                                  const QString& title)
{
    QString shown = title;
    if (const auto* loading = std::get_if<DragSessionActionState::Loading>(&m_shareState.value);
        loading && shown.isEmpty()) {
        shown = loading->title;
    }
    setShareState({DragSessionActionState::Loading{fraction, shown}});
}

void DragSessionCoordinator::operationReplaceContent(OperationsController&, const QStringList& paths)
{
    QList<QUrl> urls;
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(path));
    }
    m_operationOutputs = paths;
    replaceContent(urls);
}

void DragSessionCoordinator::operationRemoveContent(OperationsController&, const QStringList& paths)
{
    DraggableList gone;
    for (const DraggablePtr& item : m_itemsController->items()) {
        const std::optional<QUrl> url = item->url();
        if (url && url->isLocalFile() && paths.contains(url->toLocalFile())) {
            gone.append(item);
        }
    }
    if (!gone.isEmpty()) {
        removeItems(gone);
    }
}

void DragSessionCoordinator::operationProduceText(OperationsController&, const QString& text, bool asItem)
{
    if (m_copyText) {
        m_copyText(text);
    }
    if (asItem) {
        if (auto item =
                DraggableText::make(text.toUtf8(), QStringLiteral("text/plain;charset=utf-8"), true)) {
            appendItems({item});
        }
    }
    showMessage(Localized("file-operation.text-copied", "Copied to the clipboard"), Message::Icon::info,
                actionMessageDuration);
}

void DragSessionCoordinator::finishOperationRun(const Action::Result& result)
{
    m_isOperationRunning = false;
    const QPointer self(this);
    if (m_operationRunCompletion) {
        std::exchange(m_operationRunCompletion, {})(result);
    }
    if (!self || m_hasStopped) {
        return;
    }
    m_supressItemPreparationOnItemsUpdate = false;
    m_view->updateHoverState(m_window->containsMouse());
    // The controller goes with the run's end; the next menu is made for what the shelf holds now.
    dropActionsController();
    scheduleItemsUpdate();
}

void DragSessionCoordinator::operationDidFinish(OperationsController&, const QString& message)
{
    setShareState({DragSessionActionState::None{}});
    m_window->setAlphaValue(1, true);
    if (!message.isEmpty()) {
        showMessage(message, Message::Icon::warning, failureMessageDuration);
    }
    throttleSave();
    QStringList lines = m_operationOutputs;
    if (!message.isEmpty()) {
        lines.append(message);
    }
    finishOperationRun(ActionResultContext{ActionResultContext::Message{lines.join(QLatin1Char('\n'))}});
}

void DragSessionCoordinator::operationDidFail(OperationsController&, const QString& message)
{
    m_window->setAlphaValue(1, true);
    setShareState({DragSessionActionState::Error{
        Localized("file-operation.error.title", "Could not perform action"), message}});
    finishOperationRun(std::unexpected(ActionError::underlying(message)));
}

void DragSessionCoordinator::operationDidCancel(OperationsController&)
{
    setShareState({DragSessionActionState::None{}});
    m_window->setAlphaValue(1, true);
    finishOperationRun(std::unexpected(ActionError(ActionError::Kind::canceled)));
}

void DragSessionCoordinator::setShareState(const DragSessionActionState& state)
{
    m_shareState = state;
    m_view->setShareState(state);
}

void DragSessionCoordinator::showMessage(const QString& text, Message::Icon icon, Clock::Duration duration)
{
    m_messages.show(m_window->windowNumber(), Message::plain(icon, text), duration);
}

// The settings popover and the double click.

bool DragSessionCoordinator::showSettingsPopover()
{
    if (m_hasStopped || m_isStopping) {
        return false;
    }
    if (isOutlineOpen()) {
        qCInfo(lcDragSession) << "Not opening the settings while the item list is open";
        return false;
    }
    if (m_isSettingsPopoverOpen) {
        qCInfo(lcDragSession) << "The settings are open already";
        return false;
    }
    markUsed();
    m_isSettingsPopoverOpen = true;
    const QPointer self(this);
    m_view->presentSettings(DragSessionView::SettingsRequest{m_label,
                                                             [self](const DragSessionLabel& label) {
                                                                 if (self && !self->m_hasStopped) {
                                                                     self->setLabel(label);
                                                                 }
                                                             },
                                                             [self] {
                                                                 if (self) {
                                                                     self->m_isSettingsPopoverOpen = false;
                                                                 }
                                                             }});
    return true;
}

void DragSessionCoordinator::performDoubleClickAction()
{
    markUsed();
    using DoubleClick = SettingsItem::DoubleClick;
    const DoubleClick setting =
        SettingsItem::doubleClick(m_preferences.value(PreferenceKeys::doubleClickAction))
            .value_or(DoubleClick::showInFileManager);
    QString identifier;
    switch (setting) {
    case DoubleClick::showInFileManager:
        identifier = ActionIdentifiers::revealInFileManager;
        break;
    case DoubleClick::open:
        identifier = ActionIdentifiers::openFile;
        break;
    case DoubleClick::preview:
        identifier = ActionIdentifiers::preview;
        break;
    case DoubleClick::none:
        return;
    }
    if (m_doubleClickPerformer) {
        qCInfo(lcDragSession) << "The last double click's action is still running";
        return;
    }
    if (!m_desktopActions) {
        qCWarning(lcDragSession) << "No desktop actions for a double click";
        return;
    }
    ActionItemList items;
    for (const DraggablePtr& draggable : m_itemsController->items()) {
        const auto url = draggable->url();
        if (!url || !url->isLocalFile()) {
            continue;
        }
        if (auto item = ActionItem::fromFile(*url)) {
            items.append(*item);
        }
    }
    if (items.isEmpty()) {
        qCInfo(lcDragSession) << "No files to act on for a double click";
        return;
    }
    ActionPtr action;
    for (const ActionPtr& candidate : m_desktopActions->makeItemActions()) {
        if (candidate && candidate->identifier() == identifier) {
            action = candidate;
            break;
        }
    }
    if (!action || !action->canPerform(items)) {
        qCInfo(lcDragSession).noquote() << QStringLiteral("\"%1\" cannot act on these items").arg(identifier);
        return;
    }
    m_doubleClickPerformer = action;
    const QPointer self(this);
    action->perform(
        items, [](double, const std::optional<QString>&) {},
        [self, action](const Action::Result& result) {
            // Completions may come from any thread.
            DispatchQueue::main().async([self, action, result] {
                if (!self) {
                    return;
                }
                if (self->m_doubleClickPerformer == action) {
                    self->m_doubleClickPerformer.reset();
                }
                if (!result && result.error().kind() != ActionError::Kind::canceled) {
                    self->showMessage(result.error().description(), Message::Icon::warning,
                                      failureMessageDuration);
                }
            });
        });
}

// End of the settings popover and the double click.

// --- Item list ---

void DragSessionCoordinator::didTypeToSearch(const QString& text)
{
    // Keys belong to the list while it is open.
    if (isOutlineOpen()) {
        return;
    }
    showSearch(text);
}

bool DragSessionCoordinator::openOutline()
{
    if (isOutlineOpen() || isSettingsPopoverOpen()) {
        qCInfo(lcDragSession) << "Refusing to open the item list: a list or the settings popover is open";
        return false;
    }
    if (m_isStopping || m_itemsController->items().isEmpty()) {
        return false;
    }
    markUsed();
    m_outlineCoordinator = std::make_unique<DragSessionContentOutlineCoordinator>(m_itemsController->items(),
                                                                                  m_preferences, *this);
    m_view->presentOutline(*m_outlineCoordinator);
    return true;
}

void DragSessionCoordinator::dropFromOutline(const DraggableList& items)
{
    if (m_outlineCoordinator && !items.isEmpty()) {
        m_outlineCoordinator->dropItems(items);
    }
}

void DragSessionCoordinator::outlineDidRemoveItems(DragSessionContentOutlineCoordinator& outline,
                                                   const DraggableList& items, bool all)
{
    markUsed();
    // The shelf changes in steps here; the action machinery is rebuilt once, for the end result.
    m_supressItemPreparationOnItemsUpdate = true;
    if (all) {
        m_view->removeAllDraggables(true);
        m_itemsController->removeAllItems();
        m_label.pinned = false;
        refreshLabel();
        throttleSave();
        outline.close();
    } else {
        for (const DraggablePtr& item : items) {
            m_view->removeDraggable(item);
            m_itemsController->remove(item);
        }
        throttleSave();
    }
    m_supressItemPreparationOnItemsUpdate = false;
    prepareActionsIfNeeded(m_itemsController->items());
}

DraggablePtr DragSessionCoordinator::outlineDidRenameItem(DragSessionContentOutlineCoordinator&,
                                                          const DraggablePtr& item, const QString& path)
{
    auto replacement = DraggableFile::make(QUrl::fromLocalFile(path));
    if (!replacement || !m_itemsController->items().contains(item)) {
        return replacement;
    }
    m_itemsController->remove(item);
    m_itemsController->addItems({replacement});
    m_view->replaceDraggable(item, replacement);
    throttleSave();
    return replacement;
}

void DragSessionCoordinator::outlineDidDragItems(DragSessionContentOutlineCoordinator&,
                                                 const DraggableList& items, bool moved)
{
    markUsed();
    const DraggableList& held = m_itemsController->items();
    const bool everything =
        !held.isEmpty() && std::all_of(held.cbegin(), held.cend(),
                                       [&items](const DraggablePtr& item) { return items.contains(item); });
    if (everything) {
        // The whole shelf went out: the same as dragging the pile.
        didDragItems({true, DragEvent::Kind::ended}, moved);
        return;
    }
    if (moved) {
        for (const DraggablePtr& item : items) {
            m_view->removeDraggable(item);
            m_itemsController->remove(item);
        }
    }
    saveSession();
    m_preferences.setValue(PreferenceKeys::numberOfDrops,
                           m_preferences.value(PreferenceKeys::numberOfDrops) + 1);
}

ActionList DragSessionCoordinator::outlineActions(DragSessionContentOutlineCoordinator&,
                                                  const DraggableList& items)
{
    ActionList actions;
    if (m_desktopActions) {
        for (const ActionPtr& action : m_desktopActions->makeItemActions()) {
            if (action) {
                actions.append(action);
            }
        }
    }
    const QPointer self(this);
    for (const auto context : {MoveToNewShelfAction::Context::move, MoveToNewShelfAction::Context::copy}) {
        actions.append(std::make_shared<MoveToNewShelfAction>(
            context, [self, items](MoveToNewShelfAction::Context context, const ActionItemList&) {
                if (!self || !self->m_delegate) {
                    return;
                }
                if (context == MoveToNewShelfAction::Context::move) {
                    self->removeItems(items);
                }
                self->m_delegate->openNewSession(items, self->m_window->screen());
            }));
    }
    return actions;
}

ActionsController::Services
DragSessionCoordinator::outlineActionServices(DragSessionContentOutlineCoordinator&)
{
    ActionsController::Services services;
    if (m_desktopActions) {
        services.archiver = m_desktopActions->archiver();
    }
    return services;
}

void DragSessionCoordinator::outlineDidClose(DragSessionContentOutlineCoordinator& outline)
{
    if (m_outlineCoordinator.get() != &outline) {
        return;
    }
    // Often called from inside the list's own handlers: it goes once they have returned, or once the
    // action it started has ended. It goes with the shelf at the latest.
    DragSessionContentOutlineCoordinator* closed = m_outlineCoordinator.release();
    closed->setParent(this);
    if (closed->isPerforming()) {
        connect(closed, &DragSessionContentOutlineCoordinator::actionFinished, closed, &QObject::deleteLater);
    } else {
        closed->deleteLater();
    }
    m_view->updateHoverState(m_window->containsMouse());
}

// --- End of item list ---

} // namespace Vantrope
