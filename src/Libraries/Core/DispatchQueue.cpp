// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DispatchQueue.h"

#include "Logging.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <utility>

namespace Vantrope {

namespace {

// Serial queues only: jobs and one-off work use other pools, so they can never take the threads that
// this pool's sizing promises to the queues.
struct SerialPool {
    QThreadPool* pool = new QThreadPool;
    std::mutex mutex;
    int liveQueues = 0;

    void queueAdded()
    {
        std::lock_guard lock(mutex);
        pool->setMaxThreadCount(std::max(1, ++liveQueues));
    }
    void queueRemoved()
    {
        std::lock_guard lock(mutex);
        pool->setMaxThreadCount(std::max(1, --liveQueues));
    }
};

// Never destroyed: a pool or thread torn down by static destruction would wait on or kill work of the
// queues that programs keep for their whole life.
SerialPool& serialPool()
{
    static auto* pool = new SerialPool;
    return *pool;
}

// Delayed work of every serial queue waits here; when due it is queued like any other work.
QThread* timerThread()
{
    static QThread* thread = [] {
        auto* created = new QThread;
        created->setObjectName(QStringLiteral("DispatchQueue timers"));
        created->start();
        return created;
    }();
    return thread;
}

std::chrono::milliseconds timerInterval(std::chrono::nanoseconds delay)
{
    return std::max(std::chrono::milliseconds::zero(), std::chrono::round<std::chrono::milliseconds>(delay));
}

} // namespace

class DispatchQueue::Serial final : public std::enable_shared_from_this<Serial> {
public:
    explicit Serial(QString label)
        : m_label(std::move(label))
    {}

    bool isCurrent() const { return s_current == this; }

    // False when the queue is closed; the work is then dropped.
    bool enqueue(Work work)
    {
        {
            std::lock_guard lock(m_mutex);
            if (m_closed) {
                return false;
            }
            m_items.push_back(std::move(work));
            if (m_scheduled) {
                return true;
            }
            m_scheduled = true;
        }
        serialPool().pool->start([self = shared_from_this()] { self->drain(); });
        return true;
    }

    void enqueueAfter(std::chrono::milliseconds delay, Work work)
    {
        std::lock_guard lock(m_mutex);
        if (m_closed) {
            return;
        }
        if (!m_timerContext) {
            m_timerContext = new QObject;
            m_timerContext->moveToThread(timerThread());
        }
        // Posted under the lock, so it is ahead of the context's deletion in close().
        QObject* context = m_timerContext;
        QMetaObject::invokeMethod(
            context,
            [context, delay, weak = weak_from_this(), work = std::move(work)]() mutable {
                // A child of the context, so that closing the queue drops the timer and its closure.
                auto* timer = new QTimer(context);
                timer->setSingleShot(true);
                timer->setTimerType(Qt::PreciseTimer);
                QObject::connect(timer, &QTimer::timeout, timer,
                                 [timer, weak, work = std::move(work)]() mutable {
                                     if (const auto self = weak.lock()) {
                                         self->enqueue(std::move(work));
                                     }
                                     timer->deleteLater();
                                 });
                timer->start(delay);
            },
            Qt::QueuedConnection);
    }

    // Refuses new work, then waits for what is queued. On the queue itself nothing can be waited for, so
    // what is still queued is dropped.
    void close()
    {
        std::deque<Work> dropped;
        {
            std::unique_lock lock(m_mutex);
            m_closed = true;
            if (m_timerContext) {
                m_timerContext->deleteLater();
                m_timerContext = nullptr;
            }
            if (isCurrent()) {
                dropped.swap(m_items);
            } else {
                m_idle.wait(lock, [this] { return !m_scheduled; });
            }
        }
        if (!dropped.empty()) {
            qCWarning(lcCore).noquote()
                << "Queue" << m_label
                << "was destroyed by its own work; work items still queued:" << dropped.size();
        }
    }

private:
    void drain()
    {
        const Serial* const previous = std::exchange(s_current, this);
        for (;;) {
            // Declared outside the lock, so that a closure's destructor may queue work again.
            Work work;
            {
                std::lock_guard lock(m_mutex);
                if (m_items.empty()) {
                    m_scheduled = false;
                    m_idle.notify_all();
                    break;
                }
                work = std::move(m_items.front());
                m_items.pop_front();
            }
            work();
        }
        s_current = previous;
    }

    static thread_local const Serial* s_current;

    const QString m_label;
    std::mutex m_mutex;
    std::condition_variable m_idle;
    std::deque<Work> m_items;
    bool m_scheduled = false; // a runnable is in the pool or draining
    bool m_closed = false;
    QObject* m_timerContext = nullptr; // lives on the timer thread
};

thread_local const DispatchQueue::Serial* DispatchQueue::Serial::s_current = nullptr;

DispatchQueue::DispatchQueue(const QString& label)
    : m_label(label)
    , m_serial(std::make_shared<Serial>(label))
{
    serialPool().queueAdded();
}

DispatchQueue::DispatchQueue(MainTag)
    : m_label(QStringLiteral("main"))
    , m_mainContext(new QObject)
{
    if (auto* app = QCoreApplication::instance()) {
        m_mainContext->moveToThread(app->thread());
    }
}

DispatchQueue::~DispatchQueue()
{
    if (m_serial) {
        m_serial->close();
        serialPool().queueRemoved();
    } else {
        delete m_mainContext;
    }
}

DispatchQueue& DispatchQueue::main()
{
    static DispatchQueue* queue = new DispatchQueue(MainTag{});
    return *queue;
}

bool DispatchQueue::isCurrent() const
{
    if (m_serial) {
        return m_serial->isCurrent();
    }
    return QThread::currentThread() == m_mainContext->thread();
}

void DispatchQueue::async(Work work)
{
    if (m_serial) {
        m_serial->enqueue(std::move(work));
        return;
    }
    QMetaObject::invokeMethod(m_mainContext, std::move(work), Qt::QueuedConnection);
}

void DispatchQueue::asyncAfter(std::chrono::nanoseconds delay, Work work)
{
    const std::chrono::milliseconds interval = timerInterval(delay);
    if (m_serial) {
        m_serial->enqueueAfter(interval, std::move(work));
        return;
    }
    if (isCurrent()) {
        QTimer::singleShot(interval, Qt::PreciseTimer, m_mainContext, std::move(work));
        return;
    }
    // The timer must start in the main thread.
    QObject* context = m_mainContext;
    async([context, interval, work = std::move(work)]() mutable {
        QTimer::singleShot(interval, Qt::PreciseTimer, context, std::move(work));
    });
}

void DispatchQueue::sync(const Work& work)
{
    if (isCurrent()) {
        work();
        return;
    }
    if (!m_serial) {
        QMetaObject::invokeMethod(
            m_mainContext, [&work] { work(); }, Qt::BlockingQueuedConnection);
        return;
    }

    // The waiter wakes when the closure is destroyed: after it has run, or when a closing queue drops it.
    struct Done {
        std::mutex mutex;
        std::condition_variable condition;
        bool done = false;
        bool ran = false;
    };
    struct Signal {
        std::shared_ptr<Done> state;
        ~Signal()
        {
            std::lock_guard lock(state->mutex);
            state->done = true;
            state->condition.notify_all();
        }
    };
    const auto state = std::make_shared<Done>();
    m_serial->enqueue([&work, signal = std::make_shared<Signal>(state)] {
        work();
        std::lock_guard lock(signal->state->mutex);
        signal->state->ran = true;
    });
    std::unique_lock lock(state->mutex);
    state->condition.wait(lock, [&state] { return state->done; });
    if (!state->ran) {
        qCWarning(lcCore).noquote() << "Work given to the closed queue" << m_label << "did not run";
    }
}

} // namespace Vantrope
