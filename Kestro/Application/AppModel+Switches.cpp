#include "Kestro/Application/AppModel.h"
#include "Kestro/Application/FeatureSwitches.h"
#include "Kestro/Platform/PreferenceStore.h"

namespace kestro {

void AppModel::turn(FeatureSwitch feature, bool on)
{
    m_on[std::size_t(feature)] = on;
    switchKey(feature).write(m_platform.preferences, on);

    switch (feature) {
    case FeatureSwitch::claude:
    case FeatureSwitch::codex:
    case FeatureSwitch::cursor:
        applyAgents();
        break;
    case FeatureSwitch::agents:
        if (on)
            adoptCursorDefault();
        applyAgents();
        syncWidgetItem(WidgetKind::ai);
        break;
    case FeatureSwitch::limits:
        applyLimits();
        syncWidgetItem(WidgetKind::ai);
        break;
    case FeatureSwitch::music:
        syncWidgetItem(WidgetKind::music);
        break;
    case FeatureSwitch::bluetooth:
        syncWidgetItem(WidgetKind::bluetooth);
        break;
    case FeatureSwitch::weather:
        syncWidgetItem(WidgetKind::weather);
        break;
    case FeatureSwitch::clipboard:
        syncWidgetItem(WidgetKind::clipboard);
        break;
    }
    syncShortcuts(); // an item that came or went took its shortcut with it
    Q_EMIT switchesChanged();
}

void AppModel::preferencesChanged()
{
    readShortcuts();
    // Our own writes come here too and differ in nothing.
    for (std::size_t each = 0; each < featureSwitchCount; ++each) {
        const auto feature = FeatureSwitch(each);
        const bool stored = switchKey(feature).read(m_platform.preferences);
        if (stored != isOn(feature))
            turn(feature, stored);
    }
}

} // namespace kestro
