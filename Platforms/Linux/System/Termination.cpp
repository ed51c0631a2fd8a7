#include "Termination.h"

#include "EndWatchdog.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/eventfd.h>

namespace kestro {
namespace {

constexpr std::array endingSignals{ SIGTERM, SIGINT, SIGHUP };
std::array<struct sigaction, endingSignals.size()> formerActions;
volatile std::sig_atomic_t wakeDescriptor = -1;

// A handler and not signalfd: that wants the signals blocked, and programs that we start inherit the mask.
void wakeTheLoop(int)
{
    const int saved = errno;
    EndWatchdog::arm();
    ::eventfd_write(wakeDescriptor, 1);
    errno = saved;
}

LastFlush* lastFlush = nullptr;

void flushAtExit()
{
    EndWatchdog::arm();
    if (lastFlush)
        lastFlush->run();
}

} // namespace

Termination::Termination(QObject* parent)
    : QObject(parent)
    , m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    Q_ASSERT(wakeDescriptor < 0);
    if (!m_event)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_event.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Termination::drain);

    wakeDescriptor = m_event.get();
    struct sigaction act { };
    act.sa_handler = wakeTheLoop;
    act.sa_flags = SA_RESTART;
    for (size_t i = 0; i < endingSignals.size(); ++i) {
        struct sigaction& former = formerActions.at(i);
        ::sigaction(endingSignals.at(i), nullptr, &former);
        // Started by nohup, the program is to stay when the terminal goes.
        if (endingSignals.at(i) != SIGHUP || former.sa_handler != SIG_IGN)
            ::sigaction(endingSignals.at(i), &act, nullptr);
    }
}

Termination::~Termination()
{
    if (!m_event)
        return;
    for (size_t i = 0; i < endingSignals.size(); ++i)
        ::sigaction(endingSignals.at(i), &formerActions.at(i), nullptr);
    wakeDescriptor = -1;
}

void Termination::drain()
{
    eventfd_t count = 0;
    ::eventfd_read(m_event.get(), &count);
    if (!std::exchange(m_told, true))
        Q_EMIT requested();
}

LastFlush::LastFlush(std::function<void()> work)
    : m_work(std::move(work))
{
    Q_ASSERT(!lastFlush);
    lastFlush = this;
    [[maybe_unused]] static const int registered = std::atexit(flushAtExit);
}

LastFlush::~LastFlush() { lastFlush = nullptr; }

void LastFlush::run()
{
    // Taken out first: the work itself may end the process.
    if (const auto work = std::exchange(m_work, nullptr))
        work();
}

} // namespace kestro
