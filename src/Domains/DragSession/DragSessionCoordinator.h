// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionsController.h"
#include "Domains/Actions/ActionsControllerDelegate.h"
#include "DragSessionActionState.h"
#include "DragSessionContentOutlineCoordinator.h"
#include "DragSessionDropIntake.h"
#include "DragSessionItemsController.h"
#include "DragSessionLabel.h"
#include "DragSessionPasteboardController.h"
#include "DragSessionSource.h"
#include "DragSessionUserInterface.h"
#include "Libraries/Core/Clock.h"
#include "Libraries/Core/Throttler.h"
#include "Libraries/FileOperations/OperationsController.h"
#include "Libraries/FileOperations/OperationsControllerDelegate.h"
#include "Message.h"
#include "MoveToNewShelfAction.h"

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <QPointer>

namespace Vantrope {

class DesktopActions;
class DragSessionCoordinator;
class DragSessionSettingsAction;
class MessageWindowCenter;
class PersistentDragSessionStore;
class Preferences;

class DragSessionCoordinatorDelegate {
public:
    virtual ~DragSessionCoordinatorDelegate() = default;
    virtual void coordinatorDidStop(DragSessionCoordinator& coordinator) = 0;
    // Files that should go on a new shelf of their own, on the given screen.
    virtual void openNewSession(const DraggableList& draggables, const std::optional<Screen>& screen) = 0;
};

// The controller of one shelf, from the moment it is shown until its window closes: it owns the window,
// the view and the items, answers what the view reports and keeps the shelf's saved copy up to date.
class DragSessionCoordinator final : public QObject,
                                     public DragSessionViewDelegate,
                                     public ActionsControllerDelegate,
                                     public DragSessionContentOutlineCoordinatorDelegate,
                                     public OperationsControllerDelegate {
    Q_OBJECT
public:
    struct Dependencies {
        PersistentDragSessionStore& sessionStore;
        Preferences& preferences;
        DragSessionUserInterface& userInterface;
        MessageWindowCenter& messages;
        const PasteboardSource& clipboard;
        Clock& clock;
        // The program's actions on files; none offers only the shelf's own.
        DesktopActions* desktopActions = nullptr;
        // Puts text (a shared link) on the clipboard.
        std::function<void(const QString& text)> copyText = {};
        std::function<void()> openPreferences = {};
        // What the file operations need from the program; none offers no file operations.
        const OperationsController::Environment* fileOperations = nullptr;
    };

    // What `actions` lists and `run` reports to scripts.
    using AvailableActions = std::expected<QList<ActionSearchItem>, ActionError>;
    using RunCompletion = std::function<void(const Action::Result& result)>;

    static constexpr std::chrono::milliseconds saveDelay{1000};
    static constexpr std::chrono::milliseconds itemsUpdateDelay{500};
    static constexpr std::chrono::milliseconds failureMessageDuration{5000};
    static constexpr std::chrono::milliseconds actionMessageDuration{3600};

    DragSessionCoordinator(DragSessionSource source, const DragSessionLabel& label,
                           std::unique_ptr<DragSessionItemsController> itemsController,
                           const Dependencies& dependencies, QObject* parent = nullptr);
    ~DragSessionCoordinator() override;

    const QString& id() const { return m_id; }
    const DragSessionSource& source() const { return m_source; }
    bool isStopping() const { return m_isStopping; }
    bool hasStopped() const { return m_hasStopped; }
    const DragSessionLabel& label() const { return m_label; }
    // Replaces the label, shows it and saves it with the throttle.
    void setLabel(const DragSessionLabel& label);
    std::optional<int> tag() const { return m_tag; }
    void setTag(std::optional<int> tag) { m_tag = tag; }
    DragSessionCoordinatorDelegate* delegate() const { return m_delegate; }
    void setDelegate(DragSessionCoordinatorDelegate* delegate) { m_delegate = delegate; }

    DragSessionItemsController& itemsController() const { return *m_itemsController; }
    DragSessionWindow& window() const { return *m_window; }
    DragSessionView& view() const { return *m_view; }
    DragSessionPasteboardController& pasteboardController() { return m_pasteboardController; }

    // An instant action chosen before the items arrived; it keeps an empty shelf open.
    const std::optional<QString>& pendingInstantAction() const { return m_pendingInstantAction; }
    void setPendingInstantAction(std::optional<QString> action)
    {
        m_pendingInstantAction = std::move(action);
    }

    void start(const QPointF& origin);
    // `save` true writes the recent copy first. The completion runs once the shelf is gone.
    void stop(bool save, std::function<void()> completion = {});
    // Empties the shelf but keeps it open.
    void clear();
    void saveSession(std::function<void()> completion = {});
    void throttleSave();
    // Adds items to the shelf (and its view).
    void appendItems(const DraggableList& draggables, bool isRestoration = false);
    void replaceContent(const QList<QUrl>& urls);
    void playAttention();

    // What the shelf shows about an action or upload in progress.
    const DragSessionActionState& shareState() const { return m_shareState; }
    void setShareState(const DragSessionActionState& state);

    // A drag is over the shelf and taken in, or its drop is being read.
    bool isReceivingDrop() const;
    // A large drop is being read in the background; the shelf must stay until it is.
    bool isReadingDropInBackground() const { return m_dropIntake.isAsyncDragInProgress(); }

    // Grows each time the user uses this shelf (opens it, adds to it, acts on it); compared across shelves.
    quint64 lastUsed() const { return m_lastUsed; }

    // Present while the shelf has items, until a run ends.
    ActionsController* actionsController() const { return m_actionsController.get(); }
    // The menu for the current items is ready.
    bool hasPreparedMenu() const { return m_hasPreparedMenu; }
    // The actions on offer for the items now, once they are prepared.
    void availableActions(std::function<void(const AvailableActions& actions)> completion);
    // Opens type-to-search over the actions on offer, with `text` already typed.
    void showSearch(const QString& text = {});
    bool isSearchShown() const { return m_isSearchShown; }
    // Runs the action on offer with this identifier through the shelf's controller, as a menu choice.
    void runAction(const QString& identifier, RunCompletion completion);
    // The same with values for a file operation, which then asks nothing; its completion comes when the
    // operation has ended, with the files it produced as the message.
    void runAction(const QString& identifier, const QVariantMap& values, RunCompletion completion);
    // The values a file operation on offer takes (`runAction`'s), empty for everything else.
    OperationSettings operationSettings(const QString& identifier) const;

    // The order-independent hash of the item identifiers the action machinery was last prepared for.
    std::optional<size_t> preparedItemsHash() const { return m_preparedItemsHash; }

    // DragSessionViewDelegate
    bool shouldAcceptDrag(const QMimeData& data) override;
    void didExitDrag() override;
    bool didDrop(const InboundDrop& drop) override;
    void didDragItems(const DragEvent& event, bool hasMoved) override;
    void didSelectCloseButton(bool alternateModifier) override;
    void didSelectRestoreButton() override;
    void didRequestActionsMenu() override;
    void didChooseActionsMenuEntry(const ActionMenuEntry& entry) override;
    void didCloseActionsMenu() override;
    void didTypeToSearch(const QString& text) override;

    // --- Item list ---
    // Opens the list of the shelf's items; false when it is refused (a list or the settings popover is
    // open already, or the shelf is empty or stopping).
    bool openOutline();
    bool isOutlineOpen() const { return m_outlineCoordinator != nullptr; }
    DragSessionContentOutlineCoordinator* outlineCoordinator() const { return m_outlineCoordinator.get(); }
    void didRequestOutline() override { openOutline(); }

    // DragSessionContentOutlineCoordinatorDelegate
    void outlineDidRemoveItems(DragSessionContentOutlineCoordinator& outline, const DraggableList& items,
                               bool all) override;
    DraggablePtr outlineDidRenameItem(DragSessionContentOutlineCoordinator& outline, const DraggablePtr& item,
                                      const QString& path) override;
    void outlineDidDragItems(DragSessionContentOutlineCoordinator& outline, const DraggableList& items,
                             bool moved) override;
    ActionList outlineActions(DragSessionContentOutlineCoordinator& outline,
                              const DraggableList& items) override;
    ActionsController::Services outlineActionServices(DragSessionContentOutlineCoordinator& outline) override;
    void outlineDidClose(DragSessionContentOutlineCoordinator& outline) override;
    // --- End of item list ---

    // The settings popover, the double click and removal by scripts.
    // Opens the shelf's settings popover; false when it is refused: the item list or the popover is open.
    bool showSettingsPopover();
    bool isSettingsPopoverOpen() const { return m_isSettingsPopoverOpen; }
    // Does to the shelf's files what the double-click setting says.
    void performDoubleClickAction();
    // The action a double click started, held until it ends.
    const ActionPtr& doubleClickPerformer() const { return m_doubleClickPerformer; }
    // Takes these items off the shelf (not off the disk).
    void removeDraggables(const DraggableList& draggables) { removeItems(draggables); }
    void didSelectLabelGrabber() override { showSettingsPopover(); }
    void didDoubleClickItems() override { performDoubleClickAction(); }
    // End of the settings popover, the double click and removal by scripts.

    // ActionsControllerDelegate
    void didStartPreparingAction(const ActionPtr& action, ActionsController& actionsController) override;
    void didStartPerformingAction(const ActionPtr& action, ActionsController& actionsController) override;
    void didUpdateProgressForAction(const ActionPtr& action, double progress,
                                    const std::optional<QString>& progressTitle,
                                    ActionsController& actionsController) override;
    void didFinishPerformingAction(const ActionPtr& action, ActionsController& actionsController,
                                   const Action::Result& result) override;

    // OperationsControllerDelegate
    void operationDidStart(OperationsController& controller, const QString& title) override;
    void operationDidProgress(OperationsController& controller, double fraction,
                              const QString& title) override;
    void operationReplaceContent(OperationsController& controller, const QStringList& paths) override;
    void operationRemoveContent(OperationsController& controller, const QStringList& paths) override;
    void operationProduceText(OperationsController& controller, const QString& text, bool asItem) override;
    void operationDidFinish(OperationsController& controller, const QString& message) override;
    void operationDidFail(OperationsController& controller, const QString& message) override;
    void operationDidCancel(OperationsController& controller) override;

Q_SIGNALS:
    void labelChanged();

private:
    void finishOperationRun(const Action::Result& result);
    // Takes a read drop's items, or says why it took none; then the drop is over.
    bool concludeDrop(const DragSessionDropIntake::Outcome& outcome);
    void showDropFailure(const DragSessionDropIntake::Rejection& rejection);
    // Starts fetching the files that promises of a drop stand for.
    void receivePromises(const DraggableList& draggables, quint64 sequenceNumber);
    void failReceiving(const DraggablePtr& draggable, const DraggableError& error);
    void refreshLabel();
    void scheduleItemsUpdate();
    void itemsUpdate();
    void prepareActionsIfNeeded(const DraggableList& items);
    // Builds the controller for the items now when there is none.
    ActionsController* ensureActionsController();
    void dropActionsController();
    ActionList makeActions();
    QList<ActionsControllerSupplementarySearchAction> makeSupplementarySearchActions();
    void handleActionCompletion(const ActionPtr& action, const ActionResultContext& context);
    void handleActionError(const ActionPtr& action, const ActionError& error);
    // The shelf's items behind the controller's files, in the same order.
    DraggableList draggablesFor(const ActionItemList& items) const;
    void removeItems(const DraggableList& draggables);
    void moveToNewShelf(MoveToNewShelfAction::Context context, const ActionItemList& items);
    int addFromClipboard();
    void renameItem(const ActionItem& item, const Action::Completion& completion);
    void setPinned(bool pinned);
    void markUsed();
    void handleDeletedItems(const QList<DragSessionItemsController::DeleteContext>& contexts);
    void handleChangedItem(const DragSessionItemsController::ItemChangeContext& context);
    void showMessage(const QString& text, Message::Icon icon, Clock::Duration duration);
    void teardown(const std::function<void()>& completion);
    // --- Item list ---
    // Items that left the shelf by another way than the list leave the list too.
    void dropFromOutline(const DraggableList& items);
    // --- End of item list ---

    const QString m_id;
    const DragSessionSource m_source;
    bool m_isStopping = false;
    bool m_hasStopped = false;
    DragSessionLabel m_label;
    std::optional<int> m_tag;
    DragSessionCoordinatorDelegate* m_delegate = nullptr;
    PersistentDragSessionStore& m_sessionStore;
    Preferences& m_preferences;
    MessageWindowCenter& m_messages;
    Clock& m_clock;
    std::unique_ptr<DragSessionItemsController> m_itemsController;
    std::unique_ptr<DragSessionWindow> m_window;
    std::unique_ptr<DragSessionView> m_view;
    DragSessionPasteboardController m_pasteboardController;
    DragSessionDropIntake m_dropIntake;
    DragSessionActionState m_shareState;
    std::optional<QString> m_pendingInstantAction;
    bool m_supressItemPreparationOnItemsUpdate = false;
    bool m_retractOnItemDrop = false;
    std::optional<size_t> m_preparedItemsHash;
    qsizetype m_preparedItemsCount = 0;
    Throttler m_saveThrottler;
    quint64 m_itemsUpdateGeneration = 0;
    DesktopActions* m_desktopActions = nullptr;
    std::function<void(const QString&)> m_copyText;
    const OperationsController::Environment* m_fileOperations = nullptr;
    // The command line's run of a file operation, waiting for its end, and what it produced so far.
    RunCompletion m_operationRunCompletion;
    QStringList m_operationOutputs;
    bool m_isOperationRunning = false;
    std::function<void()> m_openPreferences;
    std::unique_ptr<ActionsController> m_actionsController;
    std::weak_ptr<DragSessionSettingsAction> m_settingsAction;
    bool m_hasPreparedMenu = false;
    quint64 m_lastUsed = 0;
    bool m_isSearchShown = false;
    // Runs started by scripts, told how they end.
    QList<std::pair<std::weak_ptr<Action>, RunCompletion>> m_runCompletions;

    // The settings popover and the double click.
    bool m_isSettingsPopoverOpen = false;
    ActionPtr m_doubleClickPerformer;
    // End of the settings popover and the double click.
    // --- Item list ---
    std::unique_ptr<DragSessionContentOutlineCoordinator> m_outlineCoordinator;
    // --- End of item list ---
};

} // namespace Vantrope
