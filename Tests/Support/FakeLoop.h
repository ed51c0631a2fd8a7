#pragma once

#include "Kestro/Platform/MainLoop.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace kestro::test {

/// A main loop that is turned by hand: nothing runs until `turn` or `advance`, and time stands still in between.
class FakeLoop final : public MainLoop {
public:
    Date now() const override { return m_now; }
    WorkItem after(double seconds, Work work) override;
    Timer every(double seconds, Work work) override;
    void post(Work work) override;

    /// Runs what was posted and what is due at this very moment, until nothing is left.
    void turn();
    /// Blocks until another thread has posted something, and runs it; false if none does within ten seconds.
    bool turnWhenPosted();
    /// Lets `seconds` pass, running everything that falls due on the way, in order.
    void advance(double seconds);
    /// How many work items and timers wait: 0 means that nothing would ever wake the process.
    int waiting() const;

private:
    struct Entry {
        double due;
        double interval; // 0: once
        Work work;
        bool pending = true;
    };
    class Handle;

    WorkItem schedule(double seconds, double interval, Work work);
    std::shared_ptr<Entry> nextDue(double until) const;
    void runPosted();

    Date m_now{ 800000000 };
    std::vector<std::shared_ptr<Entry>> m_entries;
    std::mutex m_postedMutex;
    std::condition_variable m_arrived;
    std::vector<Work> m_posted;
};

} // namespace kestro::test
