#pragma once

#include "DragError.h"
#include "DragSessionActionState.h"
#include "DragSessionLabel.h"
#include "Models/Draggable/Draggable.h"

namespace Vantrope {

// The content of a shelf window: the pile of items, its buttons and states. It shows what it is told
// and reports what the user does to its `DragSessionViewDelegate`.
class DragSessionView {
public:
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
    virtual DragSessionActionState shareState() const = 0;
    virtual void setShareState(const DragSessionActionState& state) = 0;

    // Items dragged out of the shelf right now.
    virtual bool hasDraggedOutItems() const = 0;
    // A drop into the shelf is being read.
    virtual bool isDragInProgress() const = 0;
    virtual bool isAsyncDragInProgress() const = 0;
};

// What a shelf view reports; the shelf's coordinator answers.
class DragSessionViewDelegate {
public:
    // How a drag that touched the shelf ended.
    struct DragEvent {
        // An outbound drag ended in a drop somewhere.
        bool endedInDrop = false;
        // 1: a drag ended (out of the shelf, or a drop into it that added nothing); 2: a drag that must
        // not cause a save.
        int kind = 1;
    };

    virtual ~DragSessionViewDelegate() = default;
    virtual void didBeginDragging(bool inbound) = 0;
    // A drop that passed validation; the coordinator takes the items.
    virtual void didConcludeDrop(const DraggableList& draggables) = 0;
    virtual void didDragItems(const DragEvent& event, bool hasMoved) = 0;
    virtual void didFailDraggingItems(bool outbound, const DragError& error, int rejectedCount) = 0;
    virtual void didSelectCloseButton(bool alternateModifier) = 0;
    virtual void didSelectRestoreButton() = 0;
    // A promise whose file never came; the view has let go of it.
    virtual void didFailReceivingDraggable(const DraggablePtr& draggable, const DraggableError& error) = 0;
};

} // namespace Vantrope
