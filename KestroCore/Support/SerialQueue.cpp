#include "KestroCore/Support/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <pthread.h>
#include <thread>

namespace kestro {

void setThreadName(const std::string& name) { pthread_setname_np(pthread_self(), name.substr(0, 15).c_str()); }

struct SerialQueue::State {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> waiting;
    bool ending = false;
    std::thread thread;

    void run()
    {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return ending || !waiting.empty(); });
            if (waiting.empty())
                return;
            auto work = std::move(waiting.front());
            waiting.pop_front();
            lock.unlock();
            work();
            work = nullptr; // what the closure holds is freed here, not under the lock
            lock.lock();
        }
    }
};

SerialQueue::SerialQueue(std::string label)
    : m_label(std::move(label))
    , m_state(std::make_unique<State>())
{
}

SerialQueue::~SerialQueue()
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->ending = true;
    }
    m_state->wake.notify_one();
    if (m_state->thread.joinable())
        m_state->thread.join();
}

void SerialQueue::async(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->waiting.push_back(std::move(work));
        if (!m_state->thread.joinable())
            m_state->thread = std::thread([state = m_state.get(), label = m_label] {
                setThreadName(label);
                state->run();
            });
    }
    m_state->wake.notify_one();
}

void SerialQueue::drain()
{
    std::promise<void> reached;
    async([&] { reached.set_value(); });
    reached.get_future().wait();
}

bool SerialQueue::drainFor(std::chrono::milliseconds limit)
{
    // Shared: the queue may reach it after the caller has given up.
    const auto reached = std::make_shared<std::promise<void>>();
    async([reached] { reached->set_value(); });
    return reached->get_future().wait_for(limit) == std::future_status::ready;
}

} // namespace kestro
