#pragma once

#include "KestroCore/Support/RawString.h"

namespace kestro {

/// The kind of a capture. Stored by its raw string.
enum class CaptureMode { area, window, fullScreen, text };
template <> struct RawStrings<CaptureMode> {
    static constexpr std::array<QLatin1StringView, 4> values{ QLatin1StringView("area"), QLatin1StringView("window"),
        QLatin1StringView("fullScreen"), QLatin1StringView("text") };
};

QString label(CaptureMode mode); ///< "Area", "Window", "Full Screen", "Text"

} // namespace kestro
