#pragma once

#include "Kestro/Application/AppModel.h"

namespace kestro {

inline const Preference<bool>& switchKey(FeatureSwitch feature)
{
    static const std::array<const Preference<bool>*, featureSwitchCount> keysInOrder{ &prefs::claudeEnabled,
        &prefs::codexEnabled, &prefs::cursorEnabled, &prefs::agentsEnabled, &prefs::limitsEnabled, &prefs::musicEnabled,
        &prefs::bluetoothEnabled, &prefs::weatherEnabled, &prefs::clipboardEnabled };
    return *keysInOrder[std::size_t(feature)];
}

/// The switch behind one of a widget's toggle keys.
inline std::optional<FeatureSwitch> switchNamed(const QString& key)
{
    for (std::size_t each = 0; each < featureSwitchCount; ++each) {
        if (switchKey(FeatureSwitch(each)).key == key)
            return FeatureSwitch(each);
    }
    return std::nullopt;
}

} // namespace kestro
