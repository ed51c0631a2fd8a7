#include "QtMainLoop.h"

#include <QDeadlineTimer>
#include <QTimerEvent>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace kestro {
namespace {

constexpr double longestInterval = 20 * 24 * 3600.0; // the timers below count milliseconds in an int

Qt::TimerType timerType(double seconds) { return seconds < 1 ? Qt::PreciseTimer : Qt::CoarseTimer; }

// A NaN counts as now.
double sane(double seconds) { return seconds > 0 ? seconds : 0; }

// Upwards, so that a precise timer is never early.
int milliseconds(double seconds) { return static_cast<int>(std::ceil(std::min(seconds, longestInterval) * 1000)); }

// Both tokens may be destroyed by the work they run: nothing touches `this` after it.

class OneShot final : public QObject, public Scheduled::Token {
public:
    OneShot(double seconds, MainLoop::Work work)
        : m_work(std::move(work))
        , m_deadline(seconds > longestInterval ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer())
    {
        if (seconds > longestInterval)
            m_deadline.setPreciseRemainingTime(static_cast<qint64>(std::min(seconds, 1e9)));
        m_timer = startTimer(milliseconds(seconds), timerType(seconds));
    }

    bool pending() const override { return m_timer != 0; }

protected:
    void timerEvent(QTimerEvent*) override
    {
        killTimer(m_timer);
        m_timer = 0;
        if (!m_deadline.hasExpired()) {
            const double left = static_cast<double>(m_deadline.remainingTime()) / 1000;
            m_timer = startTimer(milliseconds(left), timerType(left));
            return;
        }
        const MainLoop::Work work = std::move(m_work);
        work();
    }

private:
    MainLoop::Work m_work;
    QDeadlineTimer m_deadline; // expired, unless the wait is longer than one timer can be
    int m_timer = 0;
};

class Repeating final : public QObject, public Scheduled::Token {
public:
    Repeating(double seconds, MainLoop::Work work)
        : m_work(std::make_shared<MainLoop::Work>(std::move(work)))
    {
        startTimer(milliseconds(seconds), timerType(seconds));
    }

    bool pending() const override { return true; }

protected:
    void timerEvent(QTimerEvent*) override
    {
        const auto work = m_work;
        (*work)();
    }

private:
    std::shared_ptr<MainLoop::Work> m_work;
};

} // namespace

Date QtMainLoop::now() const
{
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Date::fromUnix(std::chrono::duration<double>(sinceEpoch).count());
}

WorkItem QtMainLoop::after(double seconds, Work work)
{
    return WorkItem(std::make_unique<OneShot>(sane(seconds), std::move(work)));
}

Timer QtMainLoop::every(double seconds, Work work)
{
    return Timer(std::make_unique<Repeating>(sane(seconds), std::move(work)));
}

void QtMainLoop::post(Work work) { QMetaObject::invokeMethod(&m_context, std::move(work), Qt::QueuedConnection); }

} // namespace kestro
