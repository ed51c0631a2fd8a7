#include "KestroCore/Agents/AgentLimitsRow.h"

namespace kestro {

LimitsRow LimitsRow::of(Agent agent, const std::optional<AgentLimits>& limits, Date now)
{
    const bool claude = agent == Agent::claude;
    LimitsRow row;
    row.symbol = claude ? QStringLiteral("sparkle") : QStringLiteral("chevron.left.forwardslash.chevron.right");
    row.name = claude ? QStringLiteral("Claude") : QStringLiteral("Codex");
    if (!limits) {
        row.note = claude ? QStringLiteral("No data yet · appears after your next Claude Code message")
                          : QStringLiteral("No data yet");
        return row;
    }
    if (limits->fiveHour)
        row.gauges.push_back(WindowGauge::of(*limits->fiveHour, QStringLiteral("5h"), now));
    if (limits->weekly)
        row.gauges.push_back(WindowGauge::of(*limits->weekly, QStringLiteral("week"), now));
    return row;
}

} // namespace kestro
