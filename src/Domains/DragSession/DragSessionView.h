// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Domains/Actions/ActionMenuEntry.h"
#include "DragSessionActionState.h"
#include "DragSessionDropIntake.h"
#include "DragSessionLabel.h"
#include "Libraries/Core/SearchItem.h"
#include "Models/Draggable/Draggable.h"

#include <functional>
#include <optional>
#include <QByteArray>

class QMimeData;

namespace Vantrope {

class DragSessionContentOutlineCoordinator;

// The content of a shelf window: the pile of items, its buttons and states. It shows what it is told
// and reports what the user does to its `DragSessionViewDelegate`.
class DragSessionView {
public:
    // Type-to-search over the shelf's actions.
    struct SearchRequest {
        QList<SearchItem> items;
        // Shown before anything is typed: the recent ones, most recent first, else the suggested ones.
        QStringList recentIdentifiers;
        QStringList suggestedIdentifiers;
        QString placeholder;
        // What the user typed that opened the search.
        QString initialText;
        std::function<void(const QString& identifier)> select;
        std::function<void()> dismiss;
    };

    virtual ~DragSessionView() = default;

    virtual void addDraggables(const DraggableList& draggables, bool isRestoration) = 0;
    virtual void removeDraggable(const DraggablePtr& draggable) = 0;
    virtual void replaceDraggable(const DraggablePtr& oldDraggable, const DraggablePtr& newDraggable) = 0;
    virtual void removeAllDraggables(bool animated) = 0;

    virtual void setLabel(const DragSessionLabel& label) = 0;
    virtual void setHasPermanentCloseButton(bool permanent) = 0;
    virtual bool hasPermanentCloseButton() const = 0;
    virtual void updateHoverState(bool hovering) = 0;
    virtual void playAttentionAnimation() = 0;
    virtual void setShareState(const DragSessionActionState& state) = 0;
    // The item changed in place (a promised file arrived): its picture and the caption are redone.
    virtual void refreshDraggable(const DraggablePtr& draggable) = 0;
    // The drop that came in has been dealt with, taken or not: the shelf stops showing it as a target.
    virtual void endInboundDrop() = 0;

    // Items dragged out of the shelf right now.
    virtual bool hasDraggedOutItems() const = 0;

    // A one-line editor over the shelf, filled with `text`. `done` runs once: with the text on Enter,
    // with none when the user gives up (Escape, or the editor loses the focus).
    virtual void editInline(const QString& text,
                            std::function<void(const std::optional<QString>& text)> done) = 0;
    // Opens the action menu at the pointer, now that it is ready.
    virtual void showActionsMenu(const ActionsControllerMenu& menu) = 0;
    // Covers the shelf with a search field and the list under it until one is chosen or it is dismissed.
    virtual void presentSearch(const SearchRequest& request) = 0;
    virtual void dismissSearch() = 0;

    // The settings popover.
    struct SettingsRequest {
        DragSessionLabel label;
        // Each change the user makes, as the whole new label.
        std::function<void(const DragSessionLabel& label)> change;
        // Runs once, when the popover has closed for whatever reason.
        std::function<void()> closed;
    };
    // Opens the shelf's settings, anchored on the colour grabber.
    virtual void presentSettings(const SettingsRequest& request) = 0;
    virtual void dismissSettings() = 0;
    // End of the settings popover.
    // --- Item list ---
    // Opens the list of the shelf's items below its disclosure control; the panel reports to `outline`
    // and gives itself to it as its view. The list closes through `outline`.
    virtual void presentOutline(DragSessionContentOutlineCoordinator& outline) = 0;
    // --- End of item list ---
};

// What a shelf view reports; the shelf's coordinator answers.
class DragSessionViewDelegate {
public:
    // How a drag that touched the shelf ended.
    struct DragEvent {
        enum class Kind {
            // A drag ended: out of the shelf, or a drop into it that added nothing.
            ended,
            // A drag passed over the shelf and left; nothing changed that needs saving.
            passedBy,
        };
        // An outbound drag ended in a drop somewhere.
        bool endedInDrop = false;
        Kind kind = Kind::ended;
    };

    // A drop as the window system delivers it. Valid only while the drop is being handled.
    struct InboundDrop {
        const QMimeData& data;
        // The file name a direct save source proposes, where it proposes one.
        std::optional<QByteArray> directSaveName;
        // What fetches the drop's promised files, for the drop's sequence number.
        std::function<DragSessionDropIntake::PromiseTransportFactory(quint64)> promiseFactory;
    };

    virtual ~DragSessionViewDelegate() = default;
    // A drag from elsewhere entered the shelf; false turns it away.
    virtual bool shouldAcceptDrag(const QMimeData& data) = 0;
    // The drag that was taken in left without a drop.
    virtual void didExitDrag() = 0;
    // The drop of a drag that was taken in; true when the shelf takes it, now or once it has been read.
    virtual bool didDrop(const InboundDrop& drop) = 0;
    virtual void didDragItems(const DragEvent& event, bool hasMoved) = 0;
    virtual void didSelectCloseButton(bool alternateModifier) = 0;
    virtual void didSelectRestoreButton() = 0;
    // A right click or the menu button: the shelf answers with `showActionsMenu` once the menu is ready.
    virtual void didRequestActionsMenu() = 0;
    // A row of the action menu (an action or an operation row) was chosen.
    virtual void didChooseActionsMenuEntry(const ActionMenuEntry& entry) = 0;
    virtual void didCloseActionsMenu() = 0;
    // The user typed on the shelf: the search opens with the text.
    virtual void didTypeToSearch(const QString& text) = 0;

    // The settings popover and the double click.
    // A click on the colour grabber.
    virtual void didSelectLabelGrabber() = 0;
    // A double click on the pile of items.
    virtual void didDoubleClickItems() = 0;
    // End of the settings popover and the double click.
    // --- Item list ---
    // The disclosure control or the item count was clicked: the list of items opens, unless refused.
    virtual void didRequestOutline() = 0;
    // --- End of item list ---
};

} // namespace Vantrope
