// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <QString>

namespace Vantrope {

class Job;
template<typename T> class ThreadPoolJob;

// What background work sees of its job: whether to stop, and where progress goes. Safe from any thread.
// What the work reports reaches the job on the job's thread, in order, and nothing does once the job has
// been destroyed.
class JobContext final {
public:
    explicit JobContext(Job& job);
    JobContext(const JobContext&) = delete;
    JobContext& operator=(const JobContext&) = delete;

    // Work that sees this should stop soon; whatever it returns then is dropped.
    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }
    void reportProgress(double fraction, const QString& title = {});

private:
    template<typename T> friend class ThreadPoolJob;

    // For the job, on its thread.
    void cancel() { m_cancelled = true; }
    // The job is going away: cancels, and nothing is delivered from now on.
    void detach();
    // Runs `delivery` on the job's thread, unless the job is gone by then.
    void deliver(std::function<void(Job&)> delivery);

    std::atomic<bool> m_cancelled{false};
    std::mutex m_mutex;
    Job* m_job; // null once detached
};

} // namespace Vantrope
