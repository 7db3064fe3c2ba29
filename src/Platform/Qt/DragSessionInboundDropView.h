#pragma once

#include "Domains/DragSession/DragError.h"
#include "DropPromiseTransports.h"
#include "Models/Draggable/Draggable.h"

#include <functional>
#include <memory>
#include <optional>
#include <QPointer>
#include <QWidget>

class QMimeData;

namespace Vantrope {

class Clock;
class DispatchQueue;
class Pasteboard;
class Preferences;

// The part of a shelf that takes drops: it follows a drag over the shelf, reads what is dropped into
// shelf items, rules on them and hands the accepted ones on. Its children (the pile, the buttons) take
// no drops themselves, so a drop anywhere on the shelf ends here.
class DragSessionInboundDropView final : public QWidget {
    Q_OBJECT
public:
    // From this many items a drop is read off the main thread, as files only, and no per-item work
    // happens while the drag hovers.
    static constexpr qsizetype efficiencyModeThreshold = 30;
    // The pause before a large drop is read.
    static constexpr double efficiencyModeReadDelay = 0.5;

    struct ConcludeDropEvent {
        DraggableList draggables;
        // Shared by the promises of one drop, which are received into one folder.
        std::optional<quint64> draggingSequenceNumber;
    };

    DragSessionInboundDropView(Preferences& preferences, Clock& clock, QWidget* parent = nullptr);
    ~DragSessionInboundDropView() override;

    // Asked when a drag enters; false turns it away.
    void setCanDragHandler(std::function<bool()> handler) { m_canDragHandler = std::move(handler); }
    // What the shelf holds now, for the duplicate rule.
    void setShelfItemsProvider(std::function<DraggableList()> provider)
    {
        m_shelfItems = std::move(provider);
    }
    // Drags that start at this object are the shelf's own items going out: they are not taken back in.
    void setOwnDragSource(QObject* source) { m_ownDragSource = source; }

    bool isEfficiencyModeActive() const { return m_isEfficiencyModeActive; }
    bool isDraggingEntered() const { return m_draggingEntered; }
    bool isDragInProgress() const { return m_isDragInProgress; }
    bool isAsyncDragInProgress() const { return m_isAsyncDragInProgress; }

    // The shelf items the drop's data makes, promises fetched through `promiseFactory`; public so the
    // reading can be exercised without a drag.
    static DraggableList read(const Pasteboard& pasteboard,
                              const DropPromiseTransports::Factory& promiseFactory, bool forcePlainText);
    // The drop's data as a pasteboard, with only the types some item kind reads; the direct save type
    // carries the source's proposed name and no conversion is made for it.
    static Pasteboard pasteboard(const QMimeData& data, const std::optional<QByteArray>& directSaveName);

Q_SIGNALS:
    void willBeginDragging();
    void exited();
    void failed(const Vantrope::DragError& error, int rejectedCount);
    void concluded(const Vantrope::DragSessionInboundDropView::ConcludeDropEvent& event);
    // After `failed` or `concluded`, and after a drop that was turned away.
    void ended();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void reset();
    bool accepts(const QMimeData& data) const;
    void acceptAsCopy(QDropEvent* event) const;
    void readLargeDrop(const QByteArray& uriList, quint64 sequenceNumber);
    // Rules on the drop and reports it; true when the shelf took it.
    bool finish(const DraggableList& draggables, std::optional<quint64> sequenceNumber);

    Preferences& m_preferences;
    Clock& m_clock;
    std::function<bool()> m_canDragHandler;
    std::function<DraggableList()> m_shelfItems;
    QPointer<QObject> m_ownDragSource;
    std::unique_ptr<DispatchQueue> m_queue;
    bool m_isEfficiencyModeActive = false;
    bool m_draggingEntered = false;
    bool m_isDragInProgress = false;
    bool m_isAsyncDragInProgress = false;
    quint64 m_sequenceNumber = 0;
};

} // namespace Vantrope
