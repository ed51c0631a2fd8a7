#include "Kestro/Statistics/StatsCard.h"

#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Statistics/StatsPreferences.h"
#include "KestroCore/Statistics/StatsText.h"

#include <algorithm>
#include <cmath>

namespace kestro {

namespace {

constexpr double gigabyte = 1ull << 30;
constexpr qint64 diskGigabyte = 1'000'000'000;

} // namespace

StatsCard::StatsCard(const PreferenceStore& preferences)
    : m_preferences(preferences)
{
    update();
    connect(&preferences, &PreferenceStore::changed, this, &StatsCard::update);
}

void StatsCard::show(const Stats& stats)
{
    m_stats = stats;
    update();
}

void StatsCard::showTopApps(const std::optional<std::vector<AppGroup>>& apps)
{
    QStringList shown;
    for (const AppGroup& each : apps.value_or(std::vector<AppGroup>()))
        shown.append(each.name + u' ' + StatsText::percent(each.cpu / 100));
    if (shown == m_topApps && m_measuring == !apps)
        return;
    m_topApps = shown;
    m_measuring = !apps;
    Q_EMIT topAppsChanged();
}

std::vector<StatsCard::Cell> StatsCard::cells() const
{
    std::vector<Cell> cells;
    const auto add = [&](const Preference<bool>& key, bool there, const char* label, const QString& value,
                         double level = -1, bool lowIsBad = false, bool charging = false) {
        if (there && key.read(m_preferences))
            cells.push_back({ QString::fromLatin1(label), value, level, lowIsBad, charging });
    };
    const Stats& now = m_stats;
    const QString memory = now.ramUsed
        ? QString::asprintf("%.1f / %.0f GB", double(*now.ramUsed) / gigabyte, double(now.ramTotal) / gigabyte)
        : StatsText::none;
    const double memoryLevel = now.ramUsed ? double(*now.ramUsed) / double(std::max<quint64>(now.ramTotal, 1)) : -1;
    const int battery = now.battery.value_or(0);
    const int gpu = now.gpu.value_or(0);
    add(prefs::showCPU, true, "CPU", StatsText::percent(now.cpu), now.cpu.value_or(-1));
    add(prefs::showRAM, true, "MEMORY", memory, memoryLevel);
    add(prefs::showBattery, now.battery.has_value(), "BATTERY", QStringLiteral("%1%").arg(battery), battery / 100.0,
        true, now.charging);
    add(prefs::showTemp, now.tempC.has_value(), "CPU TEMP",
        QStringLiteral("%1°").arg(std::lround(now.tempC.value_or(0))));
    add(prefs::showGPU, now.gpu.has_value(), "GPU", QStringLiteral("%1%").arg(gpu), gpu / 100.0);
    add(prefs::showSSD, now.ssdFree.has_value(), "SSD",
        QStringLiteral("%1 GB free").arg(now.ssdFree.value_or(0) / diskGigabyte));
    return cells;
}

void StatsCard::update()
{
    std::vector<Cell> now = cells();
    m_barStyle = rawValue(prefs::levelBars.read(m_preferences));
    const bool sameLabels = std::ranges::equal(now, m_cells, {}, &Cell::label, &Cell::label);
    if (!sameLabels) {
        beginResetModel();
        m_cells = std::move(now);
        endResetModel();
    } else {
        for (std::size_t i = 0; i < now.size(); ++i) {
            if (m_cells[i] == now[i])
                continue;
            m_cells[i] = now[i];
            Q_EMIT dataChanged(index(int(i)), index(int(i)));
        }
    }
    Q_EMIT changed();
}

QVariant StatsCard::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Cell& cell = m_cells[std::size_t(index.row())];
    switch (role) {
    case Label:
        return cell.label;
    case Value:
        return cell.value;
    case Level:
        return cell.level;
    case LowIsBad:
        return cell.lowIsBad;
    case Charging:
        return cell.charging;
    default:
        return {};
    }
}

QHash<int, QByteArray> StatsCard::roleNames() const
{
    return { { Label, "label" }, { Value, "value" }, { Level, "level" }, { LowIsBad, "lowIsBad" },
        { Charging, "charging" } };
}

} // namespace kestro
