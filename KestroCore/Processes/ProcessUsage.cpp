#include "KestroCore/Processes/ProcessUsage.h"

#include <unordered_map>

namespace kestro {

std::vector<ProcessUsage> StatsMath::processUsage(
    const std::vector<ProcessCPUTime>& from, const std::vector<ProcessCPUTime>& to, double seconds)
{
    std::vector<ProcessUsage> usages;
    if (!(seconds > 0))
        return usages;
    std::unordered_map<qint32, const ProcessCPUTime*> before;
    before.reserve(from.size());
    for (const ProcessCPUTime& each : from)
        before.insert_or_assign(each.pid, &each);
    usages.reserve(to.size());
    for (const ProcessCPUTime& now : to) {
        ProcessUsage usage{ now.pid, now.name, 0, now.memory, now.path, now.started,
            now.diskBytes ? std::optional(0.0) : std::nullopt, now.app };
        const auto found = before.find(now.pid);
        if (found != before.end() && found->second->name == now.name && found->second->started == now.started) {
            const ProcessCPUTime& old = *found->second;
            if (now.nanoseconds > old.nanoseconds)
                usage.percent = double(now.nanoseconds - old.nanoseconds) / (seconds * 1e9) * 100;
            if (now.diskBytes && old.diskBytes && *now.diskBytes > *old.diskBytes)
                usage.disk = double(*now.diskBytes - *old.diskBytes) / seconds;
        }
        usages.push_back(std::move(usage));
    }
    return usages;
}

} // namespace kestro
