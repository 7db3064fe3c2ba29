// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"

#include <functional>
#include <memory>
#include <QtGlobal>

namespace Vantrope {

// Tells whether a drag really carries content: while polling, it compares the drag pasteboard's change
// count five times a second and calls `updateHandler` when it has moved. It polls during a drag only.
class PasteboardWatchDog final {
public:
    using ChangeCountReader = std::function<qint64()>;

    static constexpr std::chrono::milliseconds pollInterval{200};

    PasteboardWatchDog(ChangeCountReader pasteboard, Clock& clock, DispatchQueue& queue);
    ~PasteboardWatchDog();
    PasteboardWatchDog(const PasteboardWatchDog&) = delete;
    PasteboardWatchDog& operator=(const PasteboardWatchDog&) = delete;

    void setUpdateHandler(std::function<void()> handler) { m_updateHandler = std::move(handler); }

    bool polling() const { return m_polling; }
    void setPolling(bool polling);

    // The count as last read.
    qint64 changeCount() const { return m_changeCount; }

    void checkForChangesInPasteboard();

private:
    void scheduleTick();

    ChangeCountReader m_pasteboard;
    Clock& m_clock;
    DispatchQueue& m_queue;
    std::function<void()> m_updateHandler;
    qint64 m_changeCount = 0;
    bool m_polling = false;
    // Ticks carry the generation they were scheduled in; stopping bumps it, which retires them.
    quint64 m_timerGeneration = 0;
    // Scheduled ticks hold this weakly, so a tick that outlives the watchdog does nothing.
    std::shared_ptr<PasteboardWatchDog*> m_self;
};

} // namespace Vantrope
