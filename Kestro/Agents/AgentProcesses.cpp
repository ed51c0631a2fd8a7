#include "Kestro/Agents/AgentProcesses.h"

#include "Kestro/Platform/MainLoop.h"

#include <algorithm>
#include <set>

namespace kestro {

AgentProcesses::AgentProcesses(PeerInspector& peers, const MainLoop& loop, std::function<void(const QString&)> ended)
    : m_peers(peers)
    , m_loop(loop)
    , m_ended(std::move(ended))
{
}

void AgentProcesses::handleEvent(const QString& id, const HookOrigin& origin)
{
    std::vector<ProcessId> candidates = agentCandidates(origin);
    if (candidates.empty())
        return; // not visible this time; the known candidates stay
    std::vector<ProcessId>& known = m_candidates[id];
    if (known == candidates)
        return;
    std::erase_if(candidates, [this](const ProcessId& each) { return !follow(each); });
    if (candidates.empty() && !known.empty())
        return; // the event's own processes are gone, the session's are not
    known = std::move(candidates);
    dropUnused();
    if (known.empty()) {
        m_candidates.erase(id);
        m_ended(id);
    }
}

void AgentProcesses::prune(const std::function<bool(const QString&)>& lives)
{
    if (std::erase_if(m_candidates, [&lives](const auto& entry) { return !lives(entry.first); }) > 0)
        dropUnused();
}

/// Whether it still lives.
bool AgentProcesses::follow(const ProcessId& process)
{
    if (m_processes.contains(process))
        return true;
    auto watch = m_peers.watch(process, [this, process] { processEnded(process); });
    if (!watch)
        return false;
    m_processes.emplace(process, Process{ m_loop.now(), std::move(watch) });
    return true;
}

bool AgentProcesses::isProven(const ProcessId& process, Date now) const
{
    return now - m_processes.at(process).since >= provenAfter;
}

void AgentProcesses::processEnded(const ProcessId& process)
{
    const Date now = m_loop.now();
    std::vector<QString> over;
    for (auto& [id, candidates] : m_candidates) {
        const auto agent = std::ranges::find_if(candidates, [&](const ProcessId& each) { return isProven(each, now); });
        const bool wasAgent = agent != candidates.end() && *agent == process;
        // Without any candidate left nothing could end the session any more, however short they lived.
        if (std::erase(candidates, process) > 0 && (wasAgent || candidates.empty()))
            over.push_back(id);
    }
    for (const QString& id : over)
        m_candidates.erase(id);
    dropUnused();
    for (const QString& id : over)
        m_ended(id);
}

void AgentProcesses::dropUnused()
{
    std::set<ProcessId> used;
    for (const auto& [id, candidates] : m_candidates)
        used.insert(candidates.begin(), candidates.end());
    std::erase_if(m_processes, [&used](const auto& entry) { return !used.contains(entry.first); });
}

} // namespace kestro
