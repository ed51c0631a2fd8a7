#include "Kestro/Statistics/StatsSettings.h"

#include "Kestro/Statistics/StatsPreferences.h"

#include <array>

namespace kestro {

namespace {

constexpr std::array cellKeys{ &prefs::showCPU, &prefs::showRAM, &prefs::showBattery, &prefs::showTemp, &prefs::showGPU,
    &prefs::showSSD };

} // namespace

StatsSettings::StatsSettings(PreferenceStore& preferences)
    : m_preferences(preferences)
{
    connect(&preferences, &PreferenceStore::changed, this, &StatsSettings::changed);
}

QVariantMap StatsSettings::cells() const
{
    QVariantMap map;
    for (const auto* key : cellKeys)
        map.insert(key->key, key->read(m_preferences));
    return map;
}

void StatsSettings::show(const QString& key, bool on)
{
    for (const auto* each : cellKeys) {
        if (each->key == key)
            each->write(m_preferences, on);
    }
}

QString StatsSettings::interval() const { return QString::number(prefs::statsRefreshInterval.read(m_preferences)); }

void StatsSettings::setInterval(const QString& seconds)
{
    prefs::statsRefreshInterval.write(m_preferences, seconds.toDouble());
}

} // namespace kestro
