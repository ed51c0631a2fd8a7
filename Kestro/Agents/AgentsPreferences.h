#pragma once

#include "Kestro/Preferences/Preference.h"

/// The agents' preferences: which are watched, and whether their limits are.
namespace kestro::prefs {

inline constexpr Preference<bool> agentsEnabled{ QLatin1StringView("agentsEnabled"), false };
inline constexpr Preference<bool> claudeEnabled{ QLatin1StringView("claudeEnabled"), true };
inline constexpr Preference<bool> codexEnabled{ QLatin1StringView("codexEnabled"), true };
/// Absent means more than off: the agent's folder decides when agents are first switched on.
inline constexpr Preference<std::optional<bool>> cursorStored{ QLatin1StringView("cursorEnabled") };
inline constexpr Preference<bool> cursorEnabled{ QLatin1StringView("cursorEnabled"), false };
inline constexpr Preference<bool> limitsEnabled{ QLatin1StringView("limitsEnabled"), false };
inline constexpr Preference<std::optional<QByteArray>> waitingAgentShortcut{ QLatin1StringView(
    "waitingAgentShortcut") };

} // namespace kestro::prefs
