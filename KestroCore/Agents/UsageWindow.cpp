#include "KestroCore/Agents/UsageWindow.h"

#include <algorithm>
#include <cmath>

namespace kestro {

std::optional<UsageWindow> UsageWindow::from(std::optional<double> usedPercent, std::optional<double> resetsAt)
{
    if (!usedPercent || !resetsAt)
        return std::nullopt;
    return UsageWindow{ *usedPercent, Date::fromUnix(*resetsAt) };
}

double UsageWindow::shownPercent(Date now) const { return isExpired(now) ? 0 : std::clamp(usedPercent, 0.0, 100.0); }

WindowGauge WindowGauge::of(const UsageWindow& window, const QString& label, Date now)
{
    const double percent = window.shownPercent(now);
    const QString time = window.isExpired(now) ? QStringLiteral("reset") : remaining(window.resetsAt - now);
    return { label, percent, QStringLiteral("%1% · %2").arg(QString::number(std::lround(percent)), time) };
}

QString WindowGauge::remaining(double seconds)
{
    constexpr qint64 hour = 60;
    constexpr qint64 day = 24 * hour;
    // The moment comes from a foreign number, which may be beyond any integer. So many days take as much room as
    // "23h59m", the longest that an honest one comes to.
    constexpr double most = 99'999.0 * day;
    const auto minutes = static_cast<qint64>(std::clamp(seconds / 60, 1.0, most));
    if (minutes < hour)
        return QStringLiteral("%1m").arg(minutes);
    if (minutes < day)
        return QStringLiteral("%1h%2m").arg(minutes / hour).arg(minutes % hour);
    return QStringLiteral("%1d").arg(minutes / day);
}

UsageLevel WindowGauge::level() const
{
    return percent < 50 ? UsageLevel::low : percent < 80 ? UsageLevel::medium : UsageLevel::high;
}

} // namespace kestro
