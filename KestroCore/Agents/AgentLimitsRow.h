#pragma once

#include "KestroCore/Agents/Agent.h"
#include "KestroCore/Agents/AgentLimits.h"

#include <vector>

namespace kestro {

/// What the row of one agent's limits shows: gauges, or the reason why there are none yet.
struct LimitsRow {
    QString symbol;
    QString name;
    std::vector<WindowGauge> gauges; ///< the five hours first
    QString note; ///< empty once limits are known

    /// `agent` is Claude Code or Codex; of others no limits are known.
    static LimitsRow of(Agent agent, const std::optional<AgentLimits>& limits, Date now);

    bool operator==(const LimitsRow&) const = default;
};

} // namespace kestro
