#pragma once

#include "Kestro/Preferences/Preference.h"

namespace kestro::prefs {

/// Whether the cleanup moves to the trash what can go there.
inline constexpr Preference<bool> cleanupUsesTrash{ QLatin1StringView("cleanupUsesTrash"), false };

} // namespace kestro::prefs
