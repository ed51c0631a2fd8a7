#include "KestroCore/Agents/AgentLimits.h"

#include "KestroCore/Agents/SocketMessageFields.h"

namespace kestro {

std::optional<UsageWindow> UsageWindow::from(std::optional<double> usedPercent, std::optional<double> resetsAt)
{
    if (!usedPercent || !resetsAt)
        return std::nullopt;
    return UsageWindow{ *usedPercent, Date::fromUnix(*resetsAt) };
}

std::optional<AgentLimits> AgentLimits::parseClaudeStatus(QByteArrayView json)
{
    struct Window {
        std::optional<double> percent, resetsAt;
        JsonFields fields() { return { { "used_percentage", &percent }, { "resets_at", &resetsAt } }; }
    } fiveHour, weekly;
    const JsonFields windows{ { "five_hour", fiveHour.fields() }, { "seven_day", weekly.fields() } };
    if (!readJsonFields(json, { { "rate_limits", windows } }))
        return std::nullopt;
    const AgentLimits limits{ UsageWindow::from(fiveHour.percent, fiveHour.resetsAt),
        UsageWindow::from(weekly.percent, weekly.resetsAt) };
    if (limits.isEmpty())
        return std::nullopt;
    return limits;
}

} // namespace kestro
