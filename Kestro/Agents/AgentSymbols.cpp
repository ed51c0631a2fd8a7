#include "Kestro/Agents/AgentSymbols.h"

#include "Kestro/Style/Symbols.h"

namespace kestro {

QString agentSymbol(Agent agent)
{
    switch (agent) {
    case Agent::claude:
        return symbols::sparkle;
    case Agent::codex:
        return symbols::chevronsWithSlash;
    case Agent::cursor:
        return symbols::cursorArrowRays;
    }
    Q_UNREACHABLE();
}

} // namespace kestro
