#pragma once

#include "KestroCore/Agents/HookOrigin.h"

#include <functional>
#include <memory>

namespace kestro {

/// Tells when a process has ended, for as long as this lives.
class ProcessWatch {
public:
    virtual ~ProcessWatch() = default;
};

/// The process at the other end of a socket, and its ancestors. It only reads; nothing of it is logged.
class PeerInspector {
public:
    virtual ~PeerInspector() = default;

    /// The process that connected `connection`, a descriptor, and from where it was started. To be asked before the
    /// connection is closed: until then the process waits. From any thread; some tens of microseconds a process that
    /// was not met before. Above one that has the parent that it had, ancestors are told as they were: whoever acts on
    /// one looks whether it still lives.
    virtual HookOrigin peer(int connection) const = 0;
    /// The same of a process by its number. From any thread.
    virtual HookOrigin process(qint64 pid) const = 0;

    /// Calls `ended` once, on the main thread, when the process has ended. Nothing where it has ended already. Costs
    /// nothing while it runs. Main thread.
    virtual std::unique_ptr<ProcessWatch> watch(const ProcessId& process, std::function<void()> ended) = 0;
};

} // namespace kestro
