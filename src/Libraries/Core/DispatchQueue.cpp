#include "DispatchQueue.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

namespace Vantrope {

DispatchQueue::DispatchQueue(const QString& label)
    : m_label(label)
    , m_thread(std::make_unique<QThread>())
    , m_context(new QObject)
{
    m_thread->setObjectName(label);
    m_context->moveToThread(m_thread.get());
    m_thread->start();
}

DispatchQueue::DispatchQueue(MainTag)
    : m_label(QStringLiteral("main"))
    , m_context(new QObject)
{
    if (auto* app = QCoreApplication::instance()) {
        m_context->moveToThread(app->thread());
    }
}

DispatchQueue::~DispatchQueue()
{
    if (m_thread) {
        // Work queued before destruction still runs; timers still waiting are dropped with the thread.
        QObject* context = m_context;
        QMetaObject::invokeMethod(
            context,
            [context] {
                delete context;
                QThread::currentThread()->quit();
            },
            Qt::QueuedConnection);
        m_thread->wait();
    } else {
        delete m_context;
    }
}

DispatchQueue& DispatchQueue::main()
{
    static DispatchQueue* queue = new DispatchQueue(MainTag{});
    return *queue;
}

bool DispatchQueue::isCurrent() const
{
    return QThread::currentThread() == m_context->thread();
}

void DispatchQueue::async(Work work)
{
    QMetaObject::invokeMethod(m_context, std::move(work), Qt::QueuedConnection);
}

void DispatchQueue::asyncAfter(double seconds, Work work)
{
    const int msec = seconds <= 0 ? 0 : static_cast<int>(seconds * 1000.0 + 0.5);
    if (isCurrent()) {
        QTimer::singleShot(msec, Qt::PreciseTimer, m_context, std::move(work));
        return;
    }
    // The timer must start in the queue's own thread.
    QObject* context = m_context;
    async([context, msec, work = std::move(work)]() mutable {
        QTimer::singleShot(msec, Qt::PreciseTimer, context, std::move(work));
    });
}

void DispatchQueue::sync(const Work& work)
{
    if (isCurrent()) {
        work();
        return;
    }
    QMetaObject::invokeMethod(
        m_context, [&work] { work(); }, Qt::BlockingQueuedConnection);
}

} // namespace Vantrope
