// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionsController.h"
#include "Domains/Actions/ActionsControllerDelegate.h"
#include "DragSessionContentOutlineView.h"
#include "Models/Draggable/Draggable.h"

#include <functional>
#include <memory>
#include <QObject>
#include <QSet>

namespace Vantrope {

class DragSessionContentOutlineCoordinator;
class Preferences;

// The shelf's side of an open item list.
class DragSessionContentOutlineCoordinatorDelegate {
public:
    virtual ~DragSessionContentOutlineCoordinatorDelegate() = default;
    // The user took these items off the shelf (their files stay); `all` when none is left in the list.
    virtual void outlineDidRemoveItems(DragSessionContentOutlineCoordinator& outline,
                                       const DraggableList& items, bool all) = 0;
    // The item's file was renamed on disk to `path`; answers the item that now stands for it.
    virtual DraggablePtr outlineDidRenameItem(DragSessionContentOutlineCoordinator& outline,
                                              const DraggablePtr& item, const QString& path) = 0;
    // Items dragged out of the list ended in a drop; `moved` when their files went with it.
    virtual void outlineDidDragItems(DragSessionContentOutlineCoordinator& outline,
                                     const DraggableList& items, bool moved) = 0;
    // The actions the list's menu offers for `items`: new instances, in menu order.
    virtual ActionList outlineActions(DragSessionContentOutlineCoordinator& outline,
                                      const DraggableList& items) = 0;
    // What the list's actions need from the program (the archiver of the compress action).
    virtual ActionsController::Services
    outlineActionServices(DragSessionContentOutlineCoordinator& outline) = 0;
    virtual void outlineDidClose(DragSessionContentOutlineCoordinator& outline) = 0;
};

// The logic of one open item list: which items it shows, which are selected, which files are gone, and
// what the user does to them (remove, rename, drag out, act on the selection).
class DragSessionContentOutlineCoordinator final : public QObject, public ActionsControllerDelegate {
    Q_OBJECT
public:
    DragSessionContentOutlineCoordinator(const DraggableList& items, Preferences& preferences,
                                         DragSessionContentOutlineCoordinatorDelegate& delegate,
                                         QObject* parent = nullptr);
    ~DragSessionContentOutlineCoordinator() override;

    void setView(DragSessionContentOutlineView* view) { m_view = view; }

    const DraggableList& items() const { return m_items; }
    qsizetype indexOf(const DraggablePtr& item) const { return m_items.indexOf(item); }
    // The file behind the item is gone from disk; the list shows it greyed out.
    bool isMissing(const DraggablePtr& item) const { return m_missing.contains(item.get()); }
    void markMissing(const DraggablePtr& item);

    const DraggableList& selection() const { return m_selection; }
    // Keeps only what the list holds, in the list's order.
    void setSelection(const DraggableList& selection);

    // Items added to the shelf while the list is open.
    void appendItems(const DraggableList& items);
    // Items that left the shelf by another way (their file vanished, an action): they leave the list.
    void dropItems(const DraggableList& items);
    // Puts `replacement` where `item` was.
    void replaceItem(const DraggablePtr& item, const DraggablePtr& replacement);

    // Takes the selected items off the shelf.
    void removeSelection();
    // Asks the panel for a new name for the one selected item and renames its file on disk.
    void renameSelection();
    // The selection was dragged out and dropped.
    void didDragSelection(const DraggableList& dragged, bool moved);
    // Runs the action with this identifier on the selection (the preview, open).
    void performOnSelection(const QString& identifier);
    // Builds the menu of actions for the selection and hands it to the panel.
    void requestActionsMenu();
    void didChooseActionsMenuEntry(const ActionMenuEntry& entry);
    void didCloseActionsMenu();
    // The panel went (Escape, a click outside, the shelf closing).
    void close();
    bool isClosed() const { return m_closed; }

    ActionsController* actionsController() const { return m_actionsController.get(); }
    // An action chosen in the list runs; it goes on when the list closes (a preview stays open).
    bool isPerforming() const { return m_actionsController && m_actionsController->performingAction(); }

    // ActionsControllerDelegate
    void didStartPreparingAction(const ActionPtr&, ActionsController&) override {}
    void didStartPerformingAction(const ActionPtr&, ActionsController&) override {}
    void didUpdateProgressForAction(const ActionPtr&, double, const std::optional<QString>&,
                                    ActionsController&) override
    {}
    void didFinishPerformingAction(const ActionPtr& action, ActionsController& controller,
                                   const Action::Result& result) override;

Q_SIGNALS:
    void itemsInserted(qsizetype first, qsizetype count);
    // `item` has left the list from `index`.
    void itemRemoved(qsizetype index, const Vantrope::DraggablePtr& item);
    // What stands at `index` changed; `previous` is what stood there before (the same item when only
    // its state changed).
    void itemChanged(qsizetype index, const Vantrope::DraggablePtr& previous);
    void selectionChanged();
    // An action on the selection could not be done; the text says why.
    void failed(const QString& text);
    // An action chosen in the list has ended, done or not.
    void actionFinished();

private:
    void removeItems(const DraggableList& items);
    // The controller for the selection, made anew when the selection changed.
    ActionsController* controllerForSelection();
    void renameItem(const DraggablePtr& item, const Action::Completion& completion);

    Preferences& m_preferences;
    DragSessionContentOutlineCoordinatorDelegate& m_delegate;
    DragSessionContentOutlineView* m_view = nullptr;
    DraggableList m_items;
    DraggableList m_selection;
    QSet<const Draggable*> m_missing;
    std::unique_ptr<ActionsController> m_actionsController;
    DraggableList m_controllerItems;
    bool m_closed = false;
};

} // namespace Vantrope
