// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "JobContext.h"

#include "Job.h"

namespace Vantrope {

JobContext::JobContext(Job& job)
    : m_job(&job)
{}

void JobContext::reportProgress(double fraction, const QString& title)
{
    deliver([fraction, title](Job& job) { job.reportProgress(fraction, title); });
}

void JobContext::detach()
{
    std::lock_guard lock(m_mutex);
    m_cancelled = true;
    m_job = nullptr;
}

void JobContext::deliver(std::function<void(Job&)> delivery)
{
    // Posting under the lock orders it before a detach, and so before the job's destruction, which drops
    // the job's posted events with it.
    std::lock_guard lock(m_mutex);
    if (!m_job) {
        return;
    }
    Job* const job = m_job;
    QMetaObject::invokeMethod(
        job, [job, delivery = std::move(delivery)] { delivery(*job); }, Qt::QueuedConnection);
}

} // namespace Vantrope
