#pragma once

#include "Kestro/Preferences/Preference.h"

namespace kestro::prefs::notes {

// The window's size in points, as the user left it
inline constexpr Preference<std::optional<int>> width{ QLatin1StringView("notesWidth") };
inline constexpr Preference<std::optional<int>> height{ QLatin1StringView("notesHeight") };

} // namespace kestro::prefs::notes
