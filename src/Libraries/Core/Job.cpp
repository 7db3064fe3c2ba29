// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "Job.h"

#include <algorithm>
#include <cmath>

namespace Vantrope {

Job::Job(QObject* parent)
    : QObject(parent)
{}

void Job::start()
{
    if (m_state != State::ready) {
        return;
    }
    m_state = State::running;
    doStart();
}

void Job::cancel()
{
    if (hasEnded()) {
        return;
    }
    const bool wasRunning = m_state == State::running;
    m_state = State::failed;
    m_error = Error::cancelled();
    if (wasRunning) {
        doCancel();
    }
    // Last: a receiver may delete the job.
    Q_EMIT failed(*m_error);
}

void Job::reportProgress(double fraction, const QString& title)
{
    // A fraction that is no number (a total of zero bytes, say) tells nothing, and clamps to nothing.
    if (m_state != State::running || std::isnan(fraction)) {
        return;
    }
    Q_EMIT progressed(std::clamp(fraction, 0.0, 1.0), title);
}

void Job::finish(const QVariant& result)
{
    if (m_state != State::running) {
        return;
    }
    m_state = State::finished;
    Q_EMIT finished(result);
}

void Job::fail(const Error& error)
{
    if (m_state != State::running) {
        return;
    }
    m_state = State::failed;
    m_error = error;
    Q_EMIT failed(error);
}

} // namespace Vantrope
