#include "KestroCore/Statistics/DetailedSampler.h"

#include "KestroCore/Statistics/StatsMath.h"
#include "KestroCore/Statistics/StatsText.h"

#include <QStringList>
#include <cmath>

namespace kestro {

namespace {

constexpr int shownTemperatures = 12;
constexpr int printedApps = 5;

std::optional<BatteryDetails> detailsOf(const std::optional<BatteryReading>& battery)
{
    if (!battery)
        return std::nullopt;
    BatteryDetails details{ battery->percent, battery->charging, battery->cycles };
    if (battery->maxCapacity && battery->designCapacity)
        details.health = StatsMath::batteryHealth(*battery->maxCapacity, *battery->designCapacity);
    details.watts = battery->watts;
    if (!details.watts && battery->millivolts && battery->milliamps)
        details.watts = StatsMath::batteryWatts(*battery->millivolts, *battery->milliamps);
    return details;
}

FanStatus statusOf(const std::optional<std::vector<double>>& fans)
{
    if (!fans)
        return FansUnavailable{};
    return fans->empty() ? FanStatus(NoFans{}) : FanStatus(*fans);
}

Stats baseOf(const SystemReadings& now)
{
    Stats base;
    base.ramUsed = now.ramUsed;
    base.ramTotal = now.ramTotal;
    if (now.battery) {
        base.battery = now.battery->percent;
        base.charging = now.battery->charging;
    }
    base.tempC = StatsMath::cpuTemperature(now.temperatures);
    base.gpu = now.gpu;
    base.ssdFree = now.diskFree;
    return base;
}

} // namespace

DetailedStats DetailedSampler::sample(
    SystemReadings readings, std::optional<ProcessList> processes, const AppsSampler::Name& name)
{
    DetailedStats stats{ .base = baseOf(readings), .fans = statusOf(readings.fans) };
    stats.load = readings.load;
    stats.pressure = readings.pressure;
    stats.swapUsed = readings.swapUsed;
    stats.swapTotal = readings.swapTotal;
    stats.diskTotal = readings.diskTotal;
    stats.diskUnavailable = !readings.disk;
    stats.interface = readings.interface;
    stats.address = readings.address;
    stats.battery = detailsOf(readings.battery);
    if (auto temperatures = StatsMath::topTemperatures(readings.temperatures, shownTemperatures); !temperatures.empty())
        stats.temperatures = std::move(temperatures);
    if (m_last)
        addRates(stats, readings);
    m_last = std::move(readings);
    stats.apps = m_apps.sample(std::move(processes), name);
    return stats;
}

void DetailedSampler::addRates(DetailedStats& stats, const SystemReadings& now) const
{
    const double seconds = now.moment - m_last->moment;
    stats.seconds = seconds;
    if (m_last->ticks && now.ticks)
        stats.base.cpu = cpuUsage(*m_last->ticks, *now.ticks);
    stats.cores = StatsMath::perCoreUsage(m_last->cores, now.cores);
    if (m_last->disk && now.disk) {
        stats.diskRead = StatsMath::rate(m_last->disk->read, now.disk->read, seconds);
        stats.diskWrite = StatsMath::rate(m_last->disk->written, now.disk->written, seconds);
    }
    if (m_last->interfaces && now.interfaces)
        stats.network = StatsMath::networkRates(*m_last->interfaces, *now.interfaces, seconds);
    if (m_last->own && now.own) {
        const auto used = StatsMath::rate(m_last->own->nanoseconds, now.own->nanoseconds, seconds);
        const auto woken = StatsMath::rate(m_last->own->wakeUps, now.own->wakeUps, seconds);
        if (used && woken)
            stats.own = OwnCost{ *used / 1e9 * 100, now.own->memory, *woken };
    }
}

namespace {

const QString separator = QStringLiteral(" · ");

QString cpuLine(const DetailedStats& stats)
{
    QStringList loads;
    for (const double each : stats.load.value_or(std::array<double, 3>{}))
        loads.append(QString::asprintf("%.2f", each));
    return QStringLiteral("cpu ") + StatsText::percent(stats.base.cpu) + separator
        + (stats.cores ? QString::number(stats.cores->size()) : StatsText::none) + QStringLiteral(" cores · load ")
        + (stats.load ? loads.join(u' ') : StatsText::none);
}

QString memoryLine(const DetailedStats& stats)
{
    return QStringLiteral("memory ") + StatsText::memory(stats.base.ramUsed) + QStringLiteral(" of ")
        + StatsText::memory(stats.base.ramTotal) + QStringLiteral(" · pressure ")
        + (stats.pressure ? rawValue(*stats.pressure) : StatsText::none) + QStringLiteral(" · swap ")
        + StatsText::memory(stats.swapUsed) + QStringLiteral(" of ") + StatsText::memory(stats.swapTotal);
}

QString diskLine(const DetailedStats& stats)
{
    const auto size = [](std::optional<qint64> bytes) {
        return StatsText::memory(bytes ? std::optional(quint64(std::max<qint64>(*bytes, 0))) : std::nullopt);
    };
    return QStringLiteral("disk ") + size(stats.base.ssdFree) + QStringLiteral(" free of ") + size(stats.diskTotal)
        + QStringLiteral(" · read ") + StatsText::rate(stats.diskRead) + QStringLiteral(" · write ")
        + StatsText::rate(stats.diskWrite);
}

QString networkLine(const DetailedStats& stats)
{
    const auto down = stats.network ? std::optional(stats.network->down) : std::nullopt;
    const auto up = stats.network ? std::optional(stats.network->up) : std::nullopt;
    return QStringLiteral("network ") + stats.interface.value_or(StatsText::none) + u' '
        + stats.address.value_or(StatsText::none) + QStringLiteral(" · down ") + StatsText::rate(down)
        + QStringLiteral(" · up ") + StatsText::rate(up);
}

QString batteryLine(const std::optional<BatteryDetails>& battery)
{
    if (!battery)
        return QStringLiteral("battery none");
    const auto share = battery->percent ? std::optional(*battery->percent / 100.0) : std::nullopt;
    return QStringLiteral("battery ") + StatsText::percent(share) + separator
        + (battery->cycles ? QString::number(*battery->cycles) : StatsText::none) + QStringLiteral(" cycles · health ")
        + StatsText::percent(battery->health) + separator + StatsText::watts(battery->watts);
}

QString temperatureLine(const DetailedStats& stats)
{
    if (!stats.temperatures)
        return QStringLiteral("temperatures 0 sensors · hottest ") + StatsText::none;
    const TemperatureReading& hottest = stats.temperatures->front();
    return QStringLiteral("temperatures %1 sensors · hottest %2 %3°")
        .arg(QString::number(stats.temperatures->size()), hottest.name, QString::number(std::lround(hottest.celsius)));
}

QString fanLine(const FanStatus& fans)
{
    if (std::holds_alternative<NoFans>(fans))
        return QStringLiteral("fans none");
    const auto* const speeds = std::get_if<std::vector<double>>(&fans);
    if (!speeds)
        return QStringLiteral("fans unavailable");
    QStringList words;
    for (const double each : *speeds)
        words.append(QString::number(std::lround(each)) + QStringLiteral(" rpm"));
    return QStringLiteral("fans ") + words.join(u' ');
}

QString appsLine(const std::optional<std::vector<AppGroup>>& apps)
{
    if (!apps)
        return QStringLiteral("apps ") + StatsText::none;
    QStringList best;
    for (const AppGroup& each : AppGrouping::top(*apps, AppSort::cpu, printedApps))
        best.append(each.name + u' ' + StatsText::percent(each.cpu / 100));
    return QStringLiteral("apps %1").arg(apps->size()) + separator + best.join(QStringLiteral(", "));
}

} // namespace

QString statsReport(const DetailedStats& stats)
{
    const QString gpu = stats.base.gpu ? QString::number(*stats.base.gpu) + u'%' : StatsText::none;
    const QStringList lines{ cpuLine(stats), memoryLine(stats), QStringLiteral("gpu ") + gpu, diskLine(stats),
        networkLine(stats), batteryLine(stats.battery), temperatureLine(stats), fanLine(stats.fans),
        appsLine(stats.apps) };
    return lines.join(u'\n') + u'\n';
}

} // namespace kestro
