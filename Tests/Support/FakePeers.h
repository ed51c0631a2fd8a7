#pragma once

#include "Kestro/Platform/PeerInspector.h"

#include <QHash>
#include <algorithm>
#include <list>
#include <vector>

namespace kestro::test {

class FakePeers final : public PeerInspector {
public:
    HookOrigin peer(int) const override { return origin; }
    HookOrigin process(qint64 pid) const override { return processes.value(pid); }
    std::unique_ptr<ProcessWatch> watch(const ProcessId& process, std::function<void()> ended) override
    {
        if (std::ranges::find(m_ended, process) != m_ended.end())
            return nullptr;
        return std::make_unique<Watch>(*this, m_watched.insert(m_watched.end(), { process, std::move(ended) }));
    }
    /// The process ends: each of its watches is told, and a later watch is refused.
    void end(const ProcessId& process)
    {
        m_ended.push_back(process);
        const auto watched = m_watched; // a callback may end its own watch
        for (const Watched& each : watched) {
            if (each.process == process)
                each.ended();
        }
    }
    int watches() const { return int(m_watched.size()); }

    HookOrigin origin; ///< of every connection; set while no message is on its way
    QHash<qint64, HookOrigin> processes;

private:
    struct Watched {
        ProcessId process;
        std::function<void()> ended;
    };

    class Watch final : public ProcessWatch {
    public:
        Watch(FakePeers& owner, std::list<Watched>::iterator place)
            : m_owner(owner)
            , m_place(place)
        {
        }
        ~Watch() override { m_owner.m_watched.erase(m_place); }

    private:
        FakePeers& m_owner;
        std::list<Watched>::iterator m_place;
    };

    std::list<Watched> m_watched;
    std::vector<ProcessId> m_ended;
};

} // namespace kestro::test
