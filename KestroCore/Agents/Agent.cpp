#include "KestroCore/Agents/Agent.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr std::array<QByteArrayView, allAgents.size()> agentWords{ "claude", "codex", "cursor" };

} // namespace

QString rawValue(Agent agent) { return QString::fromLatin1(agentWords.at(static_cast<size_t>(agent))); }

std::optional<Agent> agentFromRawValue(QByteArrayView raw)
{
    const auto word = std::ranges::find(agentWords, raw);
    if (word == agentWords.end())
        return std::nullopt;
    return allAgents.at(static_cast<size_t>(word - agentWords.begin()));
}

} // namespace kestro
