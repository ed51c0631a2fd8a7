#include "KestroCore/Agents/HookOrigin.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kestro {

namespace {

bool isAgentName(const QByteArray& name)
{
    static constexpr std::array<std::string_view, 4> agents{ "claude", "codex", "cursor", "cursor-agent" };
    return std::ranges::find(agents, std::string_view(name.constData(), size_t(name.size()))) != agents.end();
}

} // namespace

std::vector<ProcessId> agentCandidates(const HookOrigin& origin)
{
    std::vector<ProcessId> found;
    for (const ProcessInfo& each : origin.ancestors) {
        if (std::ranges::any_of(each.names, isAgentName))
            found.push_back(each.id);
    }
    return found;
}

} // namespace kestro
