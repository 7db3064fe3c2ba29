#include "Clock.h"

#include <QElapsedTimer>

namespace Vantrope {

namespace {

class SystemClock final : public Clock {
public:
    SystemClock() { m_timer.start(); }

    double now() const override { return static_cast<double>(m_timer.nsecsElapsed()) / 1e9; }
    QDateTime currentDateTime() const override { return QDateTime::currentDateTimeUtc(); }
    void schedule(double seconds, DispatchQueue& queue, DispatchQueue::Work work) override
    {
        queue.asyncAfter(seconds, std::move(work));
    }

private:
    QElapsedTimer m_timer;
};

} // namespace

Clock& Clock::system()
{
    static SystemClock clock;
    return clock;
}

} // namespace Vantrope
