#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace kestro {

/// The only way off the main thread: work runs in the order it was given, one piece at a time, on a thread of its own
/// that sleeps while there is none. The thread starts with the first piece.
class SerialQueue {
public:
    /// `label` names the thread in debuggers, cut to the 15 characters that the kernel keeps.
    explicit SerialQueue(std::string label);
    /// Runs what was already given, then ends the thread. That takes as long as the work does, in a dead mount for
    /// ever: what has to be saved before the process ends is drained with a limit, not left to the destructor.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// From any thread. An exception that leaves `work` ends the process.
    void async(std::function<void()> work);
    /// Blocks until everything given before has run. Not from the queue itself.
    void drain();
    /// The same for at most `limit`; returns whether it has run. From any thread but the queue's own.
    bool drainFor(std::chrono::milliseconds limit);

    const std::string& label() const { return m_label; }

private:
    struct State;
    std::string m_label;
    std::unique_ptr<State> m_state;
};

/// Names the calling thread for debuggers.
void setThreadName(const std::string& name);

} // namespace kestro
