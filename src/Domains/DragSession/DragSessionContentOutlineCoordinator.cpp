// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionContentOutlineCoordinator.h"

#include "Domains/Actions/ActionIdentifiers.h"
#include "DragSessionLogging.h"
#include "Libraries/Core/DispatchQueue.h"
#include "Libraries/Core/Localized.h"
#include "Models/Draggable/DraggableFile.h"
#include "RemoveAction.h"
#include "RenameAction.h"

#include <algorithm>
#include <QFileInfo>
#include <QPointer>

namespace Vantrope {

namespace {

bool fileIsGone(const DraggablePtr& item)
{
    const auto file = std::dynamic_pointer_cast<DraggableFile>(item);
    if (!file || !file->url() || !file->url()->isLocalFile()) {
        return false;
    }
    return !QFileInfo::exists(file->url()->toLocalFile());
}

} // namespace

DragSessionContentOutlineCoordinator::DragSessionContentOutlineCoordinator(
    const DraggableList& items, Preferences& preferences,
    DragSessionContentOutlineCoordinatorDelegate& delegate, QObject* parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_delegate(delegate)
    , m_items(items)
{
    for (const DraggablePtr& item : m_items) {
        if (fileIsGone(item)) {
            m_missing.insert(item.get());
        }
    }
}

DragSessionContentOutlineCoordinator::~DragSessionContentOutlineCoordinator()
{
    if (m_actionsController) {
        m_actionsController->setDelegate(nullptr);
        m_actionsController->cancel();
    }
}

void DragSessionContentOutlineCoordinator::markMissing(const DraggablePtr& item)
{
    const qsizetype index = m_items.indexOf(item);
    if (index < 0 || m_missing.contains(item.get())) {
        return;
    }
    m_missing.insert(item.get());
    Q_EMIT itemChanged(index, item);
}

void DragSessionContentOutlineCoordinator::setSelection(const DraggableList& selection)
{
    DraggableList kept;
    for (const DraggablePtr& item : m_items) {
        if (selection.contains(item)) {
            kept.append(item);
        }
    }
    if (kept == m_selection) {
        return;
    }
    m_selection = kept;
    Q_EMIT selectionChanged();
}

void DragSessionContentOutlineCoordinator::appendItems(const DraggableList& items)
{
    DraggableList added;
    for (const DraggablePtr& item : items) {
        if (item && !m_items.contains(item) && !added.contains(item)) {
            added.append(item);
        }
    }
    if (added.isEmpty() || m_closed) {
        return;
    }
    const qsizetype first = m_items.size();
    m_items.append(added);
    Q_EMIT itemsInserted(first, added.size());
}

void DragSessionContentOutlineCoordinator::dropItems(const DraggableList& items)
{
    bool selectionChanged = false;
    for (const DraggablePtr& item : items) {
        const qsizetype index = m_items.indexOf(item);
        if (index < 0) {
            continue;
        }
        m_items.removeAt(index);
        m_missing.remove(item.get());
        selectionChanged |= m_selection.removeAll(item) > 0;
        Q_EMIT itemRemoved(index, item);
    }
    if (selectionChanged) {
        Q_EMIT this->selectionChanged();
    }
}

void DragSessionContentOutlineCoordinator::replaceItem(const DraggablePtr& item,
                                                       const DraggablePtr& replacement)
{
    const qsizetype index = m_items.indexOf(item);
    if (index < 0 || !replacement) {
        return;
    }
    m_items[index] = replacement;
    m_missing.remove(item.get());
    const qsizetype selected = m_selection.indexOf(item);
    if (selected >= 0) {
        m_selection[selected] = replacement;
    }
    Q_EMIT itemChanged(index, item);
}

void DragSessionContentOutlineCoordinator::removeItems(const DraggableList& items)
{
    DraggableList removed;
    for (const DraggablePtr& item : items) {
        if (m_items.contains(item)) {
            removed.append(item);
        }
    }
    if (removed.isEmpty()) {
        return;
    }
    dropItems(removed);
    m_delegate.outlineDidRemoveItems(*this, removed, m_items.isEmpty());
}

void DragSessionContentOutlineCoordinator::removeSelection()
{
    removeItems(m_selection);
}

void DragSessionContentOutlineCoordinator::renameSelection()
{
    if (m_selection.size() != 1) {
        return;
    }
    renameItem(m_selection.first(), [](const Action::Result&) {});
}

void DragSessionContentOutlineCoordinator::renameItem(const DraggablePtr& item,
                                                      const Action::Completion& completion)
{
    const auto file = std::dynamic_pointer_cast<DraggableFile>(item);
    if (!file || !file->url() || !file->url()->isLocalFile() || !m_view) {
        const QString text = Localized("action.rename.error.no-file", "Only a file on disk can be renamed.");
        Q_EMIT failed(text);
        completion(std::unexpected(ActionError::underlying(text)));
        return;
    }
    const QString path = file->url()->toLocalFile();
    m_view->editName(
        item, QFileInfo(path).fileName(),
        [self = QPointer(this), item, path, completion](const std::optional<QString>& name) {
            if (!self || !name) {
                completion(std::unexpected(ActionError(ActionError::Kind::canceled)));
                return;
            }
            const auto renamed = RenameAction::renameFile(path, *name);
            if (!renamed) {
                Q_EMIT self->failed(renamed.error().description);
                completion(std::unexpected(ActionError::underlying(renamed.error().description)));
                return;
            }
            const DraggablePtr replacement = self->m_delegate.outlineDidRenameItem(*self, item, *renamed);
            self->replaceItem(item, replacement);
            completion(ActionResultContext{});
        });
}

void DragSessionContentOutlineCoordinator::didDragSelection(const DraggableList& dragged, bool moved)
{
    DraggableList held;
    for (const DraggablePtr& item : dragged) {
        if (m_items.contains(item)) {
            held.append(item);
        }
    }
    if (moved) {
        // Their files went with the drop: the shelf lets go of them, as it lets go of a moved pile.
        dropItems(held);
    }
    m_delegate.outlineDidDragItems(*this, held, moved);
}

ActionsController* DragSessionContentOutlineCoordinator::controllerForSelection()
{
    if (m_selection.isEmpty() || m_closed) {
        return nullptr;
    }
    if (m_actionsController && m_controllerItems == m_selection && !m_actionsController->performingAction()) {
        return m_actionsController.get();
    }
    if (m_actionsController) {
        if (m_actionsController->performingAction()) {
            qCInfo(lcDragSession) << "An action runs on the list's items; the next one waits for it";
            return nullptr;
        }
        m_actionsController->setDelegate(nullptr);
        m_actionsController->cancel();
        DispatchQueue::main().async(
            [old = std::shared_ptr<ActionsController>(std::move(m_actionsController))] {});
    }
    const QPointer self(this);
    ActionList actions = m_delegate.outlineActions(*this, m_selection);
    actions.append(
        std::make_shared<RenameAction>([self](const ActionItem&, const Action::Completion& completion) {
            if (self && self->m_controllerItems.size() == 1) {
                self->renameItem(self->m_controllerItems.first(), completion);
            } else {
                completion(std::unexpected(ActionError(ActionError::Kind::canceled)));
            }
        }));
    actions.append(std::make_shared<RemoveAction>([self](const ActionItemList&) {
        if (self) {
            self->removeItems(self->m_controllerItems);
        }
    }));
    m_controllerItems = m_selection;
    m_actionsController = std::make_unique<ActionsController>(m_selection, actions, m_preferences,
                                                              m_delegate.outlineActionServices(*this));
    m_actionsController->setDelegate(this);
    return m_actionsController.get();
}

void DragSessionContentOutlineCoordinator::performOnSelection(const QString& identifier)
{
    ActionsController* controller = controllerForSelection();
    if (!controller) {
        return;
    }
    controller->requestMenu(
        {}, [self = QPointer(this), identifier](const ActionsController::MenuResult& menu) {
            if (!self || !self->m_actionsController) {
                return;
            }
            ActionsController& controller = *self->m_actionsController;
            controller.menuDidClose();
            if (!menu) {
                Q_EMIT self->failed(menu.error().description());
                return;
            }
            const ActionList& actions = controller.actions();
            const auto found =
                std::find_if(actions.cbegin(), actions.cend(), [&identifier](const ActionPtr& action) {
                    return action && action->identifier() == identifier;
                });
            const ActionItemList items = controller.actionItems().value_or(ActionItemList());
            if (found == actions.cend() || !(*found)->canPerform(items)) {
                qCInfo(lcDragSession).noquote() << "The list's selection does not offer" << identifier;
                return;
            }
            controller.didSelectItem(
                ActionMenuEntry::ActionRow{*found, (*found)->title(), (*found)->iconName(), true});
        });
}

void DragSessionContentOutlineCoordinator::requestActionsMenu()
{
    ActionsController* controller = controllerForSelection();
    if (!controller) {
        return;
    }
    controller->requestMenu({}, [self = QPointer(this)](const ActionsController::MenuResult& menu) {
        if (!self || self->m_closed) {
            return;
        }
        if (!menu) {
            Q_EMIT self->failed(menu.error().description());
            return;
        }
        if (self->m_view) {
            self->m_view->showActionsMenu(*menu);
        }
    });
}

void DragSessionContentOutlineCoordinator::didChooseActionsMenuEntry(const ActionMenuEntry& entry)
{
    if (m_actionsController) {
        m_actionsController->didChooseMenuEntry(entry);
    }
}

void DragSessionContentOutlineCoordinator::didCloseActionsMenu()
{
    if (m_actionsController) {
        m_actionsController->menuDidClose();
    }
}

void DragSessionContentOutlineCoordinator::didFinishPerformingAction(const ActionPtr&, ActionsController&,
                                                                     const Action::Result& result)
{
    if (!result && result.error().kind() != ActionError::Kind::canceled) {
        Q_EMIT failed(result.error().description());
    }
    Q_EMIT actionFinished();
}

void DragSessionContentOutlineCoordinator::close()
{
    if (m_closed) {
        return;
    }
    m_closed = true;
    // What the list started goes on: a preview must not vanish because showing it closed the list.
    if (m_actionsController && !isPerforming()) {
        m_actionsController->setDelegate(nullptr);
        m_actionsController->cancel();
    }
    if (m_view) {
        DragSessionContentOutlineView* view = std::exchange(m_view, nullptr);
        view->closeOutline();
    }
    m_delegate.outlineDidClose(*this);
}

} // namespace Vantrope
