#include "Tests/Support/FakeLoop.h"

#include <algorithm>
#include <chrono>

namespace kestro::test {

class FakeLoop::Handle final : public Scheduled::Token {
public:
    explicit Handle(std::shared_ptr<Entry> entry)
        : m_entry(std::move(entry))
    {
    }
    ~Handle() override { m_entry->pending = false; }
    bool pending() const override { return m_entry->pending; }

private:
    std::shared_ptr<Entry> m_entry;
};

WorkItem FakeLoop::schedule(double seconds, double interval, Work work)
{
    auto entry = std::make_shared<Entry>(Entry{ m_now.seconds + seconds, interval, std::move(work) });
    m_entries.push_back(entry);
    return WorkItem(std::make_unique<Handle>(std::move(entry)));
}

WorkItem FakeLoop::after(double seconds, Work work) { return schedule(seconds, 0, std::move(work)); }
Timer FakeLoop::every(double seconds, Work work) { return schedule(seconds, seconds, std::move(work)); }

void FakeLoop::post(Work work)
{
    const std::lock_guard lock(m_postedMutex);
    m_posted.push_back(std::move(work));
    m_arrived.notify_one();
}

bool FakeLoop::turnWhenPosted()
{
    {
        std::unique_lock lock(m_postedMutex);
        if (!m_arrived.wait_for(lock, std::chrono::seconds(10), [this] { return !m_posted.empty(); }))
            return false;
    }
    turn();
    return true;
}

void FakeLoop::runPosted()
{
    for (;;) {
        std::vector<Work> batch;
        {
            const std::lock_guard lock(m_postedMutex);
            batch.swap(m_posted);
        }
        if (batch.empty())
            return;
        for (auto& work : batch)
            work();
    }
}

std::shared_ptr<FakeLoop::Entry> FakeLoop::nextDue(double until) const
{
    std::shared_ptr<Entry> next;
    for (const auto& entry : m_entries) {
        if (entry->pending && entry->due <= until && (!next || entry->due < next->due))
            next = entry;
    }
    return next;
}

void FakeLoop::turn() { advance(0); }

void FakeLoop::advance(double seconds)
{
    const double end = m_now.seconds + seconds;
    runPosted();
    while (const auto entry = nextDue(end)) {
        m_now.seconds = std::max(m_now.seconds, entry->due);
        if (entry->interval > 0)
            entry->due += entry->interval;
        else
            entry->pending = false;
        const Work work = entry->work; // the work may drop its own handle
        work();
        runPosted();
        std::erase_if(m_entries, [](const auto& each) { return !each->pending; });
    }
    m_now.seconds = end;
    std::erase_if(m_entries, [](const auto& each) { return !each->pending; });
}

int FakeLoop::waiting() const
{
    return int(std::ranges::count_if(m_entries, [](const auto& each) { return each->pending; }));
}

} // namespace kestro::test
