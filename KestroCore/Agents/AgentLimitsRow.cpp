#include "KestroCore/Agents/AgentLimitsRow.h"

#include <QDateTime>

namespace kestro {

namespace {

QString moment(Date date, Date now, const QLocale& locale, const QTimeZone& timeZone)
{
    const auto local = [&](Date each) {
        return QDateTime::fromMSecsSinceEpoch(qint64((each.seconds + Date::unixEpochOffset) * 1000), timeZone);
    };
    const QDateTime when = local(date);
    return when.date() == local(now).date() ? locale.toString(when.time(), QLocale::ShortFormat)
                                            : locale.toString(when, QLocale::ShortFormat);
}

} // namespace

LimitsRow LimitsRow::of(Agent agent, const std::optional<AgentLimits>& limits, Date now)
{
    const bool claude = agent == Agent::claude;
    LimitsRow row;
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

QString limitsSource(Agent agent, const AgentLimits& limits, Date now, const QLocale& locale, const QTimeZone& timeZone)
{
    QString text = agent == Agent::claude ? QStringLiteral("Told by Claude Code's status line")
                                          : QStringLiteral("Read from Codex's session log");
    if (limits.toldAt)
        text += (agent == Agent::claude ? QStringLiteral(" at %1.") : QStringLiteral(" of %1."))
                    .arg(moment(*limits.toldAt, now, locale, timeZone));
    else
        text += QStringLiteral(", which has no time.");
    if (!limits.fiveHour)
        text += QStringLiteral(" The five-hour window was not reported.");
    if (!limits.weekly)
        text += QStringLiteral(" The weekly window was not reported.");
    return text;
}

} // namespace kestro
