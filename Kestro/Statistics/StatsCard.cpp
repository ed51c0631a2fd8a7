#include "Kestro/Statistics/StatsCard.h"

#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Preferences/PreferenceKeys.h"

#include <cmath>

namespace kestro {

namespace {

const QString none = QStringLiteral("–");
constexpr double gigabyte = 1ull << 30;

} // namespace

StatsCard::StatsCard(const PreferenceStore& preferences)
    : m_preferences(preferences)
{
    show({});
    readPreferences();
    connect(&preferences, &PreferenceStore::changed, this, &StatsCard::readPreferences);
}

void StatsCard::readPreferences()
{
    m_showCPU = prefs::showCPU.read(m_preferences);
    m_showRAM = prefs::showRAM.read(m_preferences);
    m_barStyle = rawValue(prefs::levelBars.read(m_preferences));
    Q_EMIT changed();
}

void StatsCard::show(const Stats& stats)
{
    m_cpuLevel = stats.cpu.value_or(-1);
    m_cpuText = stats.cpu ? QStringLiteral("%1%").arg(std::lround(*stats.cpu * 100)) : none;
    m_memoryLevel = stats.ramUsed ? double(*stats.ramUsed) / double(std::max<quint64>(stats.ramTotal, 1)) : -1;
    m_memoryText = stats.ramUsed
        ? QString::asprintf("%.1f / %.0f GB", double(*stats.ramUsed) / gigabyte, double(stats.ramTotal) / gigabyte)
        : none;
    Q_EMIT changed();
}

} // namespace kestro
