#pragma once

#include <functional>

namespace kestro {

/// Ends the process within two seconds of its being asked to end, whatever hangs: a queue in a dead mount, a join,
/// a call that no bus answers, a static destructor. At most one object at a time.
///
/// Its thread is resident: a hung main thread could not start one when it is needed. It survives this object, so that
/// what runs after `main` is limited too.
class EndWatchdog {
public:
    /// `save` is the last resort: it runs on another thread beside a main thread that hangs, is cut off when it hangs
    /// itself, and returns whether everything is saved. It is not called after this object has gone.
    explicit EndWatchdog(std::function<bool()> save);
    ~EndWatchdog();
    EndWatchdog(const EndWatchdog&) = delete;
    EndWatchdog& operator=(const EndWatchdog&) = delete;

    /// The process was asked to end: the time runs from the first call on. From any thread, and from a signal handler;
    /// nothing happens where there is no watchdog.
    static void arm();
    /// Everything is saved. The rest of the end only frees memory, so it gets a quarter of a second. From any thread.
    static void allSaved();
};

} // namespace kestro
