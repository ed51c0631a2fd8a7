#include "KestroCore/Agents/Agent.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr std::array<QByteArrayView, allAgents.size()> words{ "claude", "codex", "cursor" };

} // namespace

QString rawValue(Agent agent) { return QString::fromLatin1(words.at(static_cast<size_t>(agent))); }

std::optional<Agent> agentFromRawValue(QByteArrayView raw)
{
    const auto word = std::ranges::find(words, raw);
    if (word == words.end())
        return std::nullopt;
    return allAgents.at(static_cast<size_t>(word - words.begin()));
}

} // namespace kestro
