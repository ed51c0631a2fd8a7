#pragma once

#include "Kestro/Preferences/Preference.h"

/// What is stored of the readings: the card's cells, and how often the window measures.
namespace kestro::prefs {

namespace clamps {
inline double refreshInterval(double seconds) { return seconds == 1 || seconds == 5 ? seconds : 2; }
} // namespace clamps

inline constexpr Preference<bool> showCPU{ QLatin1StringView("showCPU"), true };
inline constexpr Preference<bool> showRAM{ QLatin1StringView("showRAM"), true };
inline constexpr Preference<bool> showBattery{ QLatin1StringView("showBattery"), true };
inline constexpr Preference<bool> showTemp{ QLatin1StringView("showTemp"), true };
inline constexpr Preference<bool> showGPU{ QLatin1StringView("showGPU"), true };
inline constexpr Preference<bool> showSSD{ QLatin1StringView("showSSD"), true };
inline constexpr Preference<double> statsRefreshInterval{ QLatin1StringView("statsRefreshInterval"), 2,
    clamps::refreshInterval }; ///< seconds

} // namespace kestro::prefs
