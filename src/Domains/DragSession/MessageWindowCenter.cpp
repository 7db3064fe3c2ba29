// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "MessageWindowCenter.h"

#include <QPointer>

namespace Vantrope {

MessageWindowCenter::MessageWindowCenter(Clock& clock, QObject* parent)
    : QObject(parent)
    , m_clock(clock)
{}

void MessageWindowCenter::show(quint64 windowNumber, const Message& message, Clock::Duration duration)
{
    const quint64 generation = ++m_generation;
    m_messages.insert(windowNumber, {message, generation});
    Q_EMIT messageShown(windowNumber, message);
    if (duration <= Clock::Duration::zero()) {
        return;
    }
    // Only the message shown now may be taken down by its own timer.
    m_clock.schedule(duration, DispatchQueue::main(), [self = QPointer(this), windowNumber, generation] {
        if (self && self->m_messages.value(windowNumber).generation == generation) {
            self->hide(windowNumber);
        }
    });
}

void MessageWindowCenter::hide(quint64 windowNumber)
{
    if (m_messages.remove(windowNumber) > 0) {
        Q_EMIT messageHidden(windowNumber);
    }
}

std::optional<Message> MessageWindowCenter::message(quint64 windowNumber) const
{
    const auto it = m_messages.constFind(windowNumber);
    return it == m_messages.constEnd() ? std::nullopt : std::optional<Message>(it->message);
}

} // namespace Vantrope
