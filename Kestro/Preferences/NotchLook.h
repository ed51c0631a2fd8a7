#pragma once

#include "KestroCore/Layout/NotchScreen.h"

namespace kestro {

class PreferenceStore;

enum class OpenAnimation { bouncy, smooth, off };
enum class TileStyle { colorful, monochrome };
enum class LevelBars { trafficLight, accent };

template <> struct RawStrings<OpenAnimation> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("bouncy"), QLatin1StringView("smooth"),
        QLatin1StringView("off") };
};
template <> struct RawStrings<TileStyle> {
    static constexpr std::array<QLatin1StringView, 2> values{ QLatin1StringView("colorful"),
        QLatin1StringView("monochrome") };
};
template <> struct RawStrings<LevelBars> {
    static constexpr std::array<QLatin1StringView, 2> values{ QLatin1StringView("trafficLight"),
        QLatin1StringView("accent") };
};

/// Where the notch lives and how big its pill is, as set; NotchScreen::pillRect holds the size to what is allowed.
struct NotchLook {
    NotchScreenMode screenMode = NotchScreenMode::builtIn;
    double pillWidth = NotchScreen::defaultPillWidth; ///< points
    double pillHeight = NotchScreen::defaultPillHeight; ///< points

    bool operator==(const NotchLook&) const = default;

    static NotchLook current(const PreferenceStore& store);
};

} // namespace kestro
