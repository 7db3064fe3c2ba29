// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Job.h"
#include "JobContext.h"
#include "Logging.h"

#include <exception>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <QThreadPool>
#include <type_traits>
#include <variant>

namespace Vantrope {

// A function run on a thread pool as a Job. The function polls `context.isCancelled()`, reports progress
// through the context and returns its value or its error. It may outlive the job, so it must own or share
// what it touches. An exception it lets out becomes a failure rather than crossing into the pool.
//
// A job for a value finishes with the value in the signal's variant, so T must be copyable; `result()`
// gives it typed.
template<typename T> class ThreadPoolJob final : public Job {
public:
    using Outcome = std::expected<T, Job::Error>;
    using Work = std::function<Outcome(JobContext& context)>;
    using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

    // Without a pool the global one runs the work.
    explicit ThreadPoolJob(Work work, QThreadPool* pool = nullptr, QObject* parent = nullptr)
        : Job(parent)
        , m_work(std::move(work))
        , m_pool(pool ? pool : QThreadPool::globalInstance())
        , m_context(std::make_shared<JobContext>(*this))
    {}

    // The work may still be running: it is told to stop, and what it returns goes nowhere.
    ~ThreadPoolJob() override { m_context->detach(); }

    // Set once the job has finished.
    const std::optional<Value>& result() const { return m_result; }

protected:
    void doStart() override
    {
        m_pool->start([context = m_context, work = std::move(m_work)] {
            // Cancelled while waiting for a thread: the work never starts.
            if (context->isCancelled()) {
                return;
            }
            Outcome outcome = run(work, *context);
            context->deliver([outcome = std::move(outcome)](Job& job) mutable {
                static_cast<ThreadPoolJob&>(job).complete(std::move(outcome));
            });
        });
    }

    void doCancel() override { m_context->cancel(); }

private:
    static Outcome run(const Work& work, JobContext& context)
    {
        try {
            return work(context);
        } catch (const std::exception& exception) {
            qCWarning(lcCore) << "Background work threw:" << exception.what();
            return std::unexpected(Job::Error::failure(QString::fromUtf8(exception.what())));
        } catch (...) {
            qCWarning(lcCore) << "Background work threw something that is not an exception";
            return std::unexpected(Job::Error::failure(QStringLiteral("Unknown failure")));
        }
    }

    void complete(Outcome outcome)
    {
        if (!outcome) {
            fail(outcome.error());
        } else if constexpr (std::is_void_v<T>) {
            finish();
        } else if (state() == State::running) {
            m_result = std::move(*outcome);
            finish(QVariant::fromValue(*m_result));
        }
    }

    Work m_work;
    QThreadPool* m_pool;
    std::shared_ptr<JobContext> m_context;
    std::optional<Value> m_result;
};

} // namespace Vantrope
