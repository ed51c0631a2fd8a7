#include "KestroCore/Agents/AgentLimits.h"

#include "KestroCore/Agents/SocketMessageFields.h"

#include <QDateTime>
#include <cmath>

namespace kestro {

namespace {

std::optional<AgentLimits> unlessEmpty(const AgentLimits& limits)
{
    return limits.isEmpty() ? std::nullopt : std::optional(limits);
}

} // namespace

std::optional<AgentLimits> AgentLimits::parseClaudeStatus(QByteArrayView json)
{
    struct Window {
        std::optional<double> percent, resetsAt;
        JsonFields fields() { return { { "used_percentage", &percent }, { "resets_at", &resetsAt } }; }
    } fiveHour, weekly;
    const JsonFields windows{ { "five_hour", fiveHour.fields() }, { "seven_day", weekly.fields() } };
    if (!readJsonFields(json, { { "rate_limits", windows } }))
        return std::nullopt;
    return unlessEmpty(
        { UsageWindow::from(fiveHour.percent, fiveHour.resetsAt), UsageWindow::from(weekly.percent, weekly.resetsAt) });
}

std::optional<AgentLimits> AgentLimits::parseCodexLine(QByteArrayView line)
{
    struct Window {
        std::optional<double> percent, resetsAt, minutes;
        JsonFields fields()
        {
            return { { "used_percent", &percent }, { "resets_at", &resetsAt }, { "window_minutes", &minutes } };
        }
    } primary, secondary;
    std::optional<QString> limitId, timestamp;
    const JsonFields limits{ { "limit_id", &limitId }, { "primary", primary.fields() },
        { "secondary", secondary.fields() } };
    if (!readJsonFields(line, { { "payload", JsonFields{ { "rate_limits", limits } } }, { "timestamp", &timestamp } })
        || limitId.value_or(QStringLiteral("codex")) != QLatin1String("codex"))
        return std::nullopt;

    AgentLimits found;
    // The length says which window it is: a plan without the short one has the weekly one as its primary.
    for (const Window& window : { primary, secondary }) {
        const auto usage = UsageWindow::from(window.percent, window.resetsAt);
        const double minutes = std::trunc(window.minutes.value_or(0));
        if (usage && minutes == 5 * 60)
            found.fiveHour = usage;
        else if (usage && minutes == 7 * 24 * 60)
            found.weekly = usage;
    }
    const auto told = QDateTime::fromString(timestamp.value_or(QString()), Qt::ISODateWithMs);
    if (told.isValid())
        found.toldAt = Date::fromUnix(double(told.toMSecsSinceEpoch()) / 1000);
    return unlessEmpty(found);
}

} // namespace kestro
