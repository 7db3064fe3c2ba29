// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "DragMonitor.h"
#include "DragRecognizerSession.h"
#include "EventWindowOwnerNameCache.h"
#include "GlobalMouseEvent.h"
#include "Libraries/Core/Clock.h"
#include "PasteboardWatchDog.h"

#include <memory>
#include <optional>
#include <QStringList>

namespace Vantrope {

class DragRecognizerDelegate;
class TransientProperties;

// Decides when a drag of any application is a request for a shelf: a horizontal shake of the pointer,
// or the drag made with the trigger modifier held. Only drags that carry content count, or drags from
// a dock. Main thread only.
class DragRecognizer final {
public:
    enum class Sensitivity { normal, high, ludicrous };
    using Direction = DragDirection;
    using Session = DragRecognizerSession;

    // The gesture's state; `began` and `ended` may carry the event that brought them.
    struct State {
        enum class Kind { began, ended, none, cancelled, rejected };

        Kind kind = Kind::none;
        std::optional<GlobalMouseEvent> event;

        static State began(std::optional<GlobalMouseEvent> event = std::nullopt)
        {
            return {Kind::began, event};
        }
        static State ended(std::optional<GlobalMouseEvent> event = std::nullopt)
        {
            return {Kind::ended, event};
        }
        static State none() { return {}; }
        static State cancelled() { return {Kind::cancelled, std::nullopt}; }
        static State rejected() { return {Kind::rejected, std::nullopt}; }
    };

    static constexpr std::chrono::milliseconds finishDelay{100};

    // Subscribes to `monitor` for good; the monitor must outlive the recognizer.
    DragRecognizer(DragMonitor& monitor, Clock& clock, DispatchQueue& mainQueue = DispatchQueue::main(),
                   TransientProperties* transientProperties = nullptr);
    ~DragRecognizer();
    DragRecognizer(const DragRecognizer&) = delete;
    DragRecognizer& operator=(const DragRecognizer&) = delete;

    static CompletionTreshold treshold(Sensitivity sensitivity);

    Sensitivity sensitivity() const { return m_sensitivity; }
    // Sets the session's thresholds with it.
    void setSensitivity(Sensitivity sensitivity);

    // The modifier that opens a shelf without shaking; none turns that gesture off.
    std::optional<EventModifierFlags> modifierFlags() const { return m_modifierFlags; }
    void setModifierFlags(std::optional<EventModifierFlags> flags) { m_modifierFlags = flags; }

    bool shakeGestureDetectionDisabled() const { return m_shakeGestureDetectionDisabled; }
    void setShakeGestureDetectionDisabled(bool disabled) { m_shakeGestureDetectionDisabled = disabled; }

    // Owner names whose windows may not start a gesture.
    const QStringList& ignoredApplications() const { return m_ignoredApplications; }
    void setIgnoredApplications(const QStringList& names) { m_ignoredApplications = names; }

    const State& state() const { return m_state; }
    void setState(State state) { m_state = std::move(state); }

    DragRecognizerDelegate* delegate() const { return m_delegate; }
    // Not owned; clear it before the delegate goes away.
    void setDelegate(DragRecognizerDelegate* delegate) { m_delegate = delegate; }

    const PasteboardWatchDog& pasteboardWatchDog() const { return m_pasteboardWatchDog; }
    const EventWindowOwnerNameCache& ownerNameCache() const { return m_ownerNameCache; }
    bool didUpdatePasteboardContent() const { return m_didUpdatePasteboardContent; }
    bool isDockSession() const { return m_isDockSession; }
    const Session& session() const { return m_session; }

    // What the monitor calls; public so that a benchmark can feed events straight in.
    void leftMouseDragged(const GlobalMouseEvent& event);
    void leftMouseUp(const GlobalMouseEvent& event);

private:
    bool isIdle() const { return m_state.kind == State::Kind::none; }
    bool isIgnored(const GlobalMouseEvent& event);
    void beginIfAllowed(const GlobalMouseEvent& event, bool ignored);
    void pasteboardDidChange();
    void finish();

    DragMonitor& m_monitor;
    Clock& m_clock;
    DispatchQueue& m_mainQueue;
    TransientProperties& m_transientProperties;

    Sensitivity m_sensitivity = Sensitivity::normal;
    std::optional<EventModifierFlags> m_modifierFlags;
    bool m_shakeGestureDetectionDisabled = false;
    QStringList m_ignoredApplications;
    State m_state;
    DragRecognizerDelegate* m_delegate = nullptr;
    PasteboardWatchDog m_pasteboardWatchDog;
    EventWindowOwnerNameCache m_ownerNameCache;
    bool m_didUpdatePasteboardContent = false;
    bool m_isDockSession = false;
    Session m_session;

    DragMonitor::MonitorToken m_draggedToken = 0;
    DragMonitor::MonitorToken m_upToken = 0;
    // Delayed finishes hold this weakly, so one that outlives the recognizer does nothing.
    std::shared_ptr<DragRecognizer*> m_self;
};

} // namespace Vantrope
