#pragma once

#include "KestroCore/Agents/Agent.h"
#include "KestroCore/Agents/AgentLimits.h"

#include <QLocale>
#include <QTimeZone>
#include <vector>

namespace kestro {

/// The row of one agent's limits: gauges, or the reason why there are none yet.
struct LimitsRow {
    QString name;
    std::vector<WindowGauge> gauges; ///< the five hours first
    QString note; ///< empty once limits are known

    /// `agent` is Claude Code or Codex; of others no limits are known.
    static LimitsRow of(Agent agent, const std::optional<AgentLimits>& limits, Date now);

    bool operator==(const LimitsRow&) const = default;
};

/// When and from where `limits` came, and what was not among them, in a sentence or two: "Told by Claude Code at
/// 14:05." A moment of another day than `now` is given with its date.
QString limitsSource(
    Agent agent, const AgentLimits& limits, Date now, const QLocale& locale, const QTimeZone& timeZone);

} // namespace kestro
