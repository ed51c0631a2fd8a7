#include "Kestro/Statistics/StatsSection.h"

#include "Kestro/Platform/SystemCounters.h"
#include "Kestro/Style/Symbols.h"
#include "KestroCore/Statistics/DetailedSampler.h"
#include "KestroCore/Statistics/StatsText.h"

#include <algorithm>
#include <cmath>

namespace kestro {

namespace {

using Section = std::vector<StatRows::Row>;
constexpr std::size_t mostCores = 128; // rows; a machine with more shows the rest in one

QString sizeOf(std::optional<qint64> bytes)
{
    return StatsText::file(bytes ? std::optional(double(*bytes)) : std::nullopt);
}

QString ofTotal(const QString& part, const QString& whole) { return part + QStringLiteral(" of ") + whole; }

Section cpuRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const QString source = counters.source(Reading::cpu);
    Section rows{ { QStringLiteral("Total"), StatsText::percent(stats.base.cpu), stats.base.cpu.value_or(-1),
        source } };
    if (stats.load) {
        const auto& load = *stats.load;
        rows.push_back({ QStringLiteral("Load average"),
            QString::asprintf("%.2f  %.2f  %.2f", load[0], load[1], load[2]), -1, counters.source(Reading::load) });
    }
    if (!stats.cores)
        return rows;
    const std::size_t shown = std::min(stats.cores->size(), mostCores);
    for (std::size_t i = 0; i < shown; ++i) {
        const double share = (*stats.cores)[i];
        rows.push_back({ QStringLiteral("Core %1").arg(i + 1), StatsText::percent(share), share, source });
    }
    if (const std::size_t rest = stats.cores->size() - shown; rest > 0) {
        double sum = 0;
        for (std::size_t i = shown; i < stats.cores->size(); ++i)
            sum += (*stats.cores)[i];
        rows.push_back({ QStringLiteral("%1 more cores").arg(rest), StatsText::percent(sum / double(rest)),
            sum / double(rest), source });
    }
    return rows;
}

double memoryShare(const DetailedStats& stats)
{
    return stats.base.ramUsed ? double(*stats.base.ramUsed) / double(std::max<quint64>(stats.base.ramTotal, 1)) : -1;
}

Section memoryRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const QString total = StatsText::memory(stats.base.ramTotal);
    Section rows{ { QStringLiteral("Used"), ofTotal(StatsText::memory(stats.base.ramUsed), total), memoryShare(stats),
                      counters.source(Reading::memory) },
        { QStringLiteral("Pressure"), stats.pressure ? rawValue(*stats.pressure) : StatsText::none, -1,
            counters.source(Reading::pressure) } };
    if (stats.swapUsed && stats.swapTotal) {
        rows.push_back(
            { QStringLiteral("Swap"), ofTotal(StatsText::memory(stats.swapUsed), StatsText::memory(stats.swapTotal)),
                -1, counters.source(Reading::swap) });
    }
    return rows;
}

Section diskRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const QString source = counters.source(Reading::disk);
    Section rows{ { QStringLiteral("Free"), ofTotal(sizeOf(stats.base.ssdFree), sizeOf(stats.diskTotal)), -1,
        counters.source(Reading::diskSpace) } };
    const auto text = [&](std::optional<double> rate) {
        return stats.diskUnavailable ? QStringLiteral("Unavailable") : StatsText::rate(rate);
    };
    rows.push_back({ QStringLiteral("Read"), text(stats.diskRead), -1, source });
    rows.push_back({ QStringLiteral("Write"), text(stats.diskWrite), -1, source });
    return rows;
}

Section networkRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const auto rate = [&](double Throughput::*way) {
        return StatsText::rate(stats.network ? std::optional((*stats.network).*way) : std::nullopt);
    };
    const QString source = counters.source(Reading::network);
    return { { QStringLiteral("Download"), rate(&Throughput::down), -1, source },
        { QStringLiteral("Upload"), rate(&Throughput::up), -1, source },
        { stats.interface.value_or(QStringLiteral("Interface")),
            stats.address.value_or(QStringLiteral("No IPv4 address")), -1, counters.source(Reading::interface) } };
}

Section batteryRows(const DetailedStats& stats, const SystemCounters& counters)
{
    if (!stats.battery)
        return {};
    const BatteryDetails& battery = *stats.battery;
    const QString source = counters.source(Reading::battery);
    const auto share = battery.percent ? std::optional(*battery.percent / 100.0) : std::nullopt;
    Section rows{
        { battery.charging ? QStringLiteral("Charging") : QStringLiteral("Not charging"), StatsText::percent(share), -1,
            source },
        { QStringLiteral("Cycles"), battery.cycles ? QString::number(*battery.cycles) : StatsText::none, -1, source },
        { QStringLiteral("Health"), StatsText::percent(battery.health), -1, source },
    };
    if (battery.watts) {
        rows.push_back({ *battery.watts >= 0 ? QStringLiteral("Charging at") : QStringLiteral("Using"),
            StatsText::watts(std::abs(*battery.watts)), -1, source });
    }
    return rows;
}

Section temperatureRows(const DetailedStats& stats, const SystemCounters& counters)
{
    Section rows;
    for (const TemperatureReading& each : stats.temperatures.value_or(std::vector<TemperatureReading>())) {
        rows.push_back({ each.name, QStringLiteral("%1°").arg(std::lround(each.celsius)), -1,
            counters.source(Reading::temperature) });
    }
    return rows;
}

Section fanRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const QString source = counters.source(Reading::fan);
    if (std::holds_alternative<NoFans>(stats.fans))
        return { { QStringLiteral("No fans"), {}, -1, source } };
    const auto* const speeds = std::get_if<std::vector<double>>(&stats.fans);
    if (!speeds)
        return { { QStringLiteral("Unavailable"), {}, -1, source } };
    Section rows;
    for (std::size_t i = 0; i < speeds->size(); ++i) {
        rows.push_back({ QStringLiteral("Fan %1").arg(i + 1), QStringLiteral("%1 rpm").arg(std::lround((*speeds)[i])),
            -1, source });
    }
    return rows;
}

Section ownRows(const DetailedStats& stats, const SystemCounters& counters)
{
    const QString source = counters.source(Reading::own);
    const auto& own = stats.own;
    return { { QStringLiteral("Processor"), own ? QString::asprintf("%.1f%% of a core", own->percent) : StatsText::none,
                 -1, source },
        { QStringLiteral("Memory"), own ? StatsText::memory(own->memory) : StatsText::none, -1, source },
        { QStringLiteral("Wake-ups"), own ? QString::asprintf("%.0f/s", own->wakeUps) : StatsText::none, -1, source } };
}

} // namespace

StatsSection::StatsSection(QString title, QString symbol, Rows rows, Chart chart, Figure figure)
    : m_title(std::move(title))
    , m_symbol(std::move(symbol))
    , m_makeRows(std::move(rows))
    , m_chart(chart)
    , m_figure(std::move(figure))
{
}

void StatsSection::show(const DetailedStats& stats, double moment)
{
    m_rows.show(m_makeRows(stats));
    if (isCharted())
        addToChart(m_figure(stats), moment);
    const bool shown = m_rows.rowCount() > 0;
    if (std::exchange(m_shown, shown) != shown)
        Q_EMIT shownChanged();
}

void StatsSection::clear()
{
    m_history.clear();
    m_points.clear();
    Q_EMIT chartChanged();
}

void StatsSection::addToChart(std::optional<double> figure, double moment)
{
    if (figure && std::isfinite(*figure))
        m_history.emplace_back(moment, *figure);
    std::erase_if(
        m_history, [&](const auto& each) { return moment - each.first > chartSeconds || each.first > moment; });
    m_points.clear();
    double highest = 0;
    for (const auto& [at, value] : m_history) {
        m_points.append({ moment - at, value });
        highest = std::max(highest, value);
    }
    // A scale of round figures, so that it does not follow every flicker.
    constexpr double least = 100'000;
    m_top = m_chart == Chart::share ? 1 : least;
    while (m_top < highest)
        m_top *= m_top * 2 >= highest ? 2 : 10;
    Q_EMIT chartChanged();
}

QString StatsSection::chartText() const
{
    return m_chart == Chart::share ? StatsText::percent(m_top) : StatsText::rate(m_top);
}

std::vector<std::unique_ptr<StatsSection>> statsSections(const SystemCounters& counters)
{
    std::vector<std::unique_ptr<StatsSection>> all;
    const auto add = [&](const char* title, const QString& symbol,
                         Section (*rows)(const DetailedStats&, const SystemCounters&),
                         StatsSection::Chart chart = StatsSection::Chart::none, StatsSection::Figure figure = {}) {
        all.push_back(std::make_unique<StatsSection>(
            QString::fromLatin1(title), symbol,
            [rows, &counters](const DetailedStats& stats) { return rows(stats, counters); }, chart, std::move(figure)));
    };
    using Chart = StatsSection::Chart;
    add("CPU", symbols::cpuFill, cpuRows, Chart::share, [](const DetailedStats& stats) { return stats.base.cpu; });
    add("Memory", symbols::memoryChip, memoryRows, Chart::share, [](const DetailedStats& stats) {
        return stats.base.ramUsed ? std::optional(memoryShare(stats)) : std::nullopt;
    });
    add("GPU", symbols::gaugeMedium, [](const DetailedStats& stats, const SystemCounters& from) -> Section {
        const auto& gpu = stats.base.gpu;
        return { { QStringLiteral("Utilization"), gpu ? QStringLiteral("%1%").arg(*gpu) : QStringLiteral("Unavailable"),
            gpu ? *gpu / 100.0 : -1, from.source(Reading::gpu) } };
    });
    add("Disk", symbols::internalDrive, diskRows, Chart::rate, [](const DetailedStats& stats) {
        return stats.diskRead && stats.diskWrite ? std::optional(*stats.diskRead + *stats.diskWrite) : std::nullopt;
    });
    add("Network", symbols::globe, networkRows, Chart::rate, [](const DetailedStats& stats) {
        return stats.network ? std::optional(stats.network->down + stats.network->up) : std::nullopt;
    });
    add("Battery", symbols::battery75Percent, batteryRows);
    add("Temperatures", symbols::thermometerMedium, temperatureRows);
    add("Fans", symbols::sunMax, fanRows);
    add("Kestro", symbols::dockRectangle, ownRows);
    return all;
}

} // namespace kestro
