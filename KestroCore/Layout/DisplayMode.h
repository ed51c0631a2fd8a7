#pragma once

#include "KestroCore/Support/RawString.h"

namespace kestro {

/// Which surface shows the layout.
enum class DisplayMode { notch, sidebar };

template <> struct RawStrings<DisplayMode> {
    static constexpr std::array<QLatin1StringView, 2> values{ QLatin1StringView("notch"),
        QLatin1StringView("sidebar") };
};

} // namespace kestro
