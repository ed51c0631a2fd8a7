#pragma once

#include "KestroCore/Agents/Agent.h"
#include "KestroCore/Support/Date.h"

#include <QString>
#include <cstddef>

namespace kestro {

enum class AgentState { idle, working, needsInput, done };
inline constexpr std::size_t agentStateCount = 4;

/// The state of one conversation of an agent, as its events tell it.
struct Session {
    QString id;
    Agent agent = Agent::claude; ///< the agent of the latest event
    QString project; ///< the name of the working folder; may be empty
    AgentState state = AgentState::idle;
    Date lastEventAt;

    bool operator==(const Session&) const = default;
};

/// The word that a user reads for a state.
QString stateWord(AgentState state);

/// How long ago something was, `seconds` being its age: "now", "5m ago", "2h ago".
QString agoText(double seconds);

} // namespace kestro
