// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragRecognizer.h"

#include "DragRecognizerDelegate.h"
#include "TransientProperties.h"

namespace Vantrope {

DragRecognizer::DragRecognizer(DragMonitor& monitor, Clock& clock, DispatchQueue& mainQueue,
                               TransientProperties* transientProperties)
    : m_monitor(monitor)
    , m_clock(clock)
    , m_mainQueue(mainQueue)
    , m_transientProperties(transientProperties ? *transientProperties : TransientProperties::shared())
    , m_pasteboardWatchDog([&monitor] { return monitor.dragPasteboardChangeCount(); }, clock, mainQueue)
    , m_ownerNameCache([&monitor] { return monitor.windowList(); })
    , m_self(std::make_shared<DragRecognizer*>(this))
{
    m_pasteboardWatchDog.setUpdateHandler([this] { pasteboardDidChange(); });
    m_draggedToken =
        m_monitor.addGlobalMonitor(GlobalMouseEvent::Type::leftMouseDragged,
                                   [this](const GlobalMouseEvent& event) { leftMouseDragged(event); });
    m_upToken = m_monitor.addGlobalMonitor(GlobalMouseEvent::Type::leftMouseUp,
                                           [this](const GlobalMouseEvent& event) { leftMouseUp(event); });
}

DragRecognizer::~DragRecognizer()
{
    m_monitor.removeMonitor(m_draggedToken);
    m_monitor.removeMonitor(m_upToken);
}

CompletionTreshold DragRecognizer::treshold(Sensitivity sensitivity)
{
    using namespace std::chrono_literals;
    switch (sensitivity) {
    case Sensitivity::normal:
        break;
    case Sensitivity::high:
        return {3, 12.0, 200ms};
    case Sensitivity::ludicrous:
        return {1, 5.0, 200ms};
    }
    return {4, 20.0, 200ms};
}

void DragRecognizer::setSensitivity(Sensitivity sensitivity)
{
    m_sensitivity = sensitivity;
    m_session.treshold = treshold(sensitivity);
}

void DragRecognizer::leftMouseDragged(const GlobalMouseEvent& event)
{
    if (!m_pasteboardWatchDog.polling()) {
        // The first event of a drag.
        m_isDockSession = m_ownerNameCache.dockWindowNumbers().contains(event.windowNumber);
        m_pasteboardWatchDog.setPolling(true);
    }
    if (!isIdle()) {
        return;
    }
    m_transientProperties.setDragging(true);
    if (m_didUpdatePasteboardContent) {
        m_transientProperties.setDraggingPasteboardContent(true);
    }

    if (m_modifierFlags && (event.modifierFlags & *m_modifierFlags) == *m_modifierFlags) {
        // Holding the modifier is enough; the shake count plays no part.
        m_session.update(event.locationInWindow, m_clock.now());
        beginIfAllowed(event, isIgnored(event));
        return;
    }
    if (m_shakeGestureDetectionDisabled) {
        return;
    }
    m_session.update(event.locationInWindow, m_clock.now());
    const bool ignored = isIgnored(event);
    if (m_session.complete) {
        beginIfAllowed(event, ignored);
    }
}

bool DragRecognizer::isIgnored(const GlobalMouseEvent& event)
{
    const std::optional<QString> owner = m_ownerNameCache.ownerName(event.windowNumber);
    return owner && m_ignoredApplications.contains(*owner);
}

void DragRecognizer::beginIfAllowed(const GlobalMouseEvent& event, bool ignored)
{
    // Without new drag content only a drag from a dock may open a shelf: anything else is a window
    // move, a selection or a slider.
    if (ignored || (!m_didUpdatePasteboardContent && !m_isDockSession)) {
        return;
    }
    m_state = State::began(event);
    if (m_delegate) {
        m_delegate->dragRecognizerDidBegin(event.locationInWindow);
    }
    m_transientProperties.setDragging(true);
    m_transientProperties.setDraggingPasteboardContent(true);
}

void DragRecognizer::pasteboardDidChange()
{
    m_didUpdatePasteboardContent = true;
    // A shake finished before the drag's content arrived. Neither the ignore list nor the dock test
    // applies here.
    if (m_session.complete && isIdle()) {
        m_state = State::began();
        if (m_delegate) {
            m_delegate->dragRecognizerDidBegin(m_monitor.mouseLocation());
        }
    }
}

void DragRecognizer::leftMouseUp(const GlobalMouseEvent&)
{
    m_transientProperties.setDraggingPasteboardContent(false);
    m_transientProperties.setDragging(false);
    m_didUpdatePasteboardContent = false;
    m_pasteboardWatchDog.setPolling(false);
    m_isDockSession = false;
    m_clock.schedule(finishDelay, m_mainQueue, [weak = std::weak_ptr<DragRecognizer*>(m_self)] {
        if (const auto self = weak.lock()) {
            (*self)->finish();
        }
    });
}

void DragRecognizer::finish()
{
    // Without a gesture the session keeps its values for the next drag; the one-second window clears
    // them in time.
    if (isIdle()) {
        return;
    }
    m_pasteboardWatchDog.setPolling(false);
    m_state = State::none();
    m_session.resetAfterGesture();
    if (m_delegate) {
        m_delegate->dragRecognizerDidEnd(SessionCloseFilter::empty);
    }
}

} // namespace Vantrope
