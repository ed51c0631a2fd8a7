#pragma once

#include <QByteArrayView>
#include <QString>
#include <array>
#include <optional>

namespace kestro {

/// The coding agents whose sessions can be watched.
enum class Agent { claude, codex, cursor };

inline constexpr std::array allAgents{ Agent::claude, Agent::codex, Agent::cursor };

/// The agent's word in hook commands and on the socket: "claude", "codex", "cursor".
QString rawValue(Agent agent);

/// The agent whose word `raw` is, byte for byte.
std::optional<Agent> agentFromRawValue(QByteArrayView raw);

} // namespace kestro
