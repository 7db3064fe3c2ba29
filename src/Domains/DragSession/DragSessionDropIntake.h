// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragError.h"
#include "Models/Draggable/Draggable.h"
#include "Models/Draggable/DraggableContext.h"
#include "Models/Pasteboard/Pasteboard.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <QObject>
#include <variant>

class QMimeData;

namespace Vantrope {

class Clock;
class DispatchQueue;

// What a shelf makes of a drag that comes in: whether it is worth taking, which shelf items the dropped
// data makes and whether the shelf takes them. A drop of many items is read off the main thread after a
// short pause, as files only, so the drag's source is not held up.
class DragSessionDropIntake final : public QObject {
    Q_OBJECT
public:
    using PromiseTransportFactory = decltype(DraggableContext::promiseTransportFactory);

    // From this many items a drop is read later, as files only, and no per-item work happens while the drag
    // hovers.
    static constexpr qsizetype efficiencyModeThreshold = 30;
    // The pause before a large drop is read.
    static constexpr std::chrono::milliseconds efficiencyModeReadDelay{500};

    // A drop the shelf turned away, with the number of items its rule refused.
    struct Rejection {
        DragError error;
        int count = 0;
    };
    // What the shelf is told once a drop has been read: the items it takes, or why it takes none.
    struct Outcome {
        std::variant<DraggableList, Rejection> value;
        // Shared by the promises of one drop, which are received into one folder.
        quint64 sequenceNumber = 0;
    };

    explicit DragSessionDropIntake(Clock& clock, QObject* parent = nullptr);
    ~DragSessionDropIntake() override;

    // Whether some item kind reads any of the drag's types.
    static bool accepts(const QStringList& formats);
    // The drop's data as a pasteboard, with only the types some item kind reads; the direct save type
    // carries the source's proposed name and no conversion is made for it.
    static Pasteboard pasteboard(const QMimeData& data, const std::optional<QByteArray>& directSaveName);
    // The shelf items the pasteboard makes, promises fetched through `promiseFactory`.
    static DraggableList read(const Pasteboard& pasteboard, const PromiseTransportFactory& promiseFactory,
                              bool forcePlainText);
    // Rules on dropped items against what the shelf holds; absent means the shelf takes them.
    static std::optional<Rejection> validate(const DraggableList& shelfItems, const DraggableList& dropped);

    // A drag with `data` entered the shelf; false turns it away.
    bool enter(const QMimeData& data);
    // The drag left without a drop; true when it had been taken in by `enter`.
    bool exit();

    // The drop of the drag that entered. Small drops are read now and the outcome is returned; a large
    // one is read later and its outcome comes through `largeDropRead`, so nothing is returned.
    // `promiseFactory` is asked with the drop's sequence number.
    std::optional<Outcome> drop(const QMimeData& data, const std::optional<QByteArray>& directSaveName,
                                const std::function<PromiseTransportFactory(quint64)>& promiseFactory,
                                bool forcePlainText, const DraggableList& shelfItems);
    // Ends the drop that `drop` or `largeDropRead` reported.
    void finish();

    bool isDraggingEntered() const { return m_draggingEntered; }
    bool isEfficiencyModeActive() const { return m_isEfficiencyModeActive; }
    // A drop is being read, here or in the background.
    bool isDragInProgress() const { return m_isDragInProgress; }
    bool isAsyncDragInProgress() const { return m_isAsyncDragInProgress; }

Q_SIGNALS:
    // The files of a large drop, read in the background; validate them against the shelf then.
    void largeDropRead(const Vantrope::DraggableList& files, quint64 sequenceNumber);

private:
    void readLargeDrop(const QByteArray& uriList, quint64 sequenceNumber);

    Clock& m_clock;
    std::unique_ptr<DispatchQueue> m_queue;
    bool m_isEfficiencyModeActive = false;
    bool m_draggingEntered = false;
    bool m_isDragInProgress = false;
    bool m_isAsyncDragInProgress = false;
    quint64 m_sequenceNumber = 0;
};

} // namespace Vantrope
