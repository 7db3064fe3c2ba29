// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/Core/Clock.h"
#include "Message.h"

#include <QHash>
#include <QObject>

namespace Vantrope {

// Which shelf shows which message, by the shelf's window number. The views listen and draw; the logic
// asks whether a shelf shows one (a shelf showing a message is not closed behind the user's back).
class MessageWindowCenter final : public QObject {
    Q_OBJECT
public:
    explicit MessageWindowCenter(Clock& clock, QObject* parent = nullptr);

    // Replaces what the window shows; after `duration` it goes by itself (zero keeps it up).
    void show(quint64 windowNumber, const Message& message, Clock::Duration duration);
    void hide(quint64 windowNumber);
    bool hasMessage(quint64 windowNumber) const { return m_messages.contains(windowNumber); }
    std::optional<Message> message(quint64 windowNumber) const;

Q_SIGNALS:
    void messageShown(quint64 windowNumber, const Vantrope::Message& message);
    void messageHidden(quint64 windowNumber);

private:
    struct Entry {
        Message message;
        quint64 generation;
    };

    Clock& m_clock;
    quint64 m_generation = 0;
    QHash<quint64, Entry> m_messages;
};

} // namespace Vantrope
