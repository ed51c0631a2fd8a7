#pragma once

#include "Kestro/Platform/PeerInspector.h"
#include "KestroCore/Support/Date.h"

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace kestro {

class MainLoop;

/// Which process is the agent of each session, and that it has ended: a killed agent sends no event. It is the nearest
/// ancestor of the hook that goes by an agent's name and outlives the event by two seconds, since hooks may be run by
/// helpers of that name. Where none outlives it, the end of the last one ends the session. Nothing wakes for it. Main
/// thread.
class AgentProcesses final {
public:
    /// How long a process must have been known to count as an agent, in seconds.
    static constexpr double provenAfter = 2;

    /// `ended` is told the id of a session whose agent has ended, once.
    AgentProcesses(PeerInspector& peers, const MainLoop& loop, std::function<void(const QString&)> ended);

    /// An event of the session `id` came from `origin`.
    void handleEvent(const QString& id, const HookOrigin& origin);
    /// Forgets the sessions that are over.
    void prune(const std::function<bool(const QString&)>& lives);

private:
    struct Process {
        Date since;
        std::unique_ptr<ProcessWatch> watch;
    };

    bool follow(const ProcessId& process);
    bool isProven(const ProcessId& process, Date now) const;
    void processEnded(const ProcessId& process);
    void dropUnused();

    PeerInspector& m_peers;
    const MainLoop& m_loop;
    std::function<void(const QString&)> m_ended;
    std::map<ProcessId, Process> m_processes; // that live
    std::map<QString, std::vector<ProcessId>> m_candidates; // of each session, the nearest first; they live
};

} // namespace kestro
