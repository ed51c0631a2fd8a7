#pragma once

#include "KestroCore/Support/RawString.h"

namespace kestro {

/// The panes of the Settings window, in the order of its sidebar.
enum class SettingsPane { general, appearance, layout, agents, shortcuts };
template <> struct RawStrings<SettingsPane> {
    static constexpr std::array<QLatin1StringView, 5> values{ QLatin1StringView("general"),
        QLatin1StringView("appearance"), QLatin1StringView("layout"), QLatin1StringView("agents"),
        QLatin1StringView("shortcuts") };
};

} // namespace kestro
