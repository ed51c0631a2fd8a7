#include "Kestro/Preferences/FeatureSwitch.h"

namespace kestro {

FeatureSwitches::FeatureSwitches(PreferenceStore& preferences)
    : m_preferences(preferences)
{
}

FeatureSwitch::FeatureSwitch(FeatureSwitches& all, const Preference<bool>& preference)
    : m_all(all)
    , m_preference(preference)
    , m_on(preference.read(all.m_preferences))
{
    all.m_switches.insert(preference.key, this);
    connect(&all.m_preferences, &PreferenceStore::changed, this, [this] {
        // Our own writes come here too and differ in nothing.
        const bool stored = m_preference.read(m_all.m_preferences);
        if (stored != m_on)
            turn(stored);
    });
}

void FeatureSwitch::turn(bool on)
{
    m_on = on;
    m_preference.write(m_all.m_preferences, on);
    Q_EMIT changed();
    Q_EMIT m_all.turned(m_preference.key);
}

} // namespace kestro
