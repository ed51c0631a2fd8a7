#pragma once

#include "Kestro/Preferences/Preference.h"

namespace kestro::prefs::timer {

/// The countdown as TimerState::encode writes it.
inline constexpr Preference<std::optional<QByteArray>> state{ QLatin1StringView("timerState") };

} // namespace kestro::prefs::timer
