#include "KestroCore/Processes/AppsSampler.h"

#include <utility>

namespace kestro {

std::optional<std::vector<AppGroup>> AppsSampler::sample(std::optional<ProcessList> list, const Name& name)
{
    const auto last = std::exchange(m_last, std::move(list));
    if (!last || !m_last)
        return std::nullopt;
    auto groups =
        AppGrouping::groups(StatsMath::processUsage(last->processes, m_last->processes, m_last->moment - last->moment));
    for (AppGroup& group : groups) {
        if (group.bundlePath)
            group.name = name(*group.bundlePath).value_or(group.name);
    }
    return groups;
}

} // namespace kestro
