#pragma once

#include "KestroCore/Layout/ScreenInfo.h"
#include "KestroCore/Support/RawString.h"

#include <QList>
#include <QPointF>

namespace kestro {

/// On which display the notch lives: the built-in one, or whichever the pointer calls it to.
enum class NotchScreenMode { builtIn, pointer };

template <> struct RawStrings<NotchScreenMode> {
    static constexpr std::array<QLatin1StringView, 2> values{ QLatin1StringView("builtIn"),
        QLatin1StringView("pointer") };
};

/// Its name for the user.
QString title(NotchScreenMode mode);

namespace NotchScreen {

inline constexpr double edgeDistance = 40; ///< height of the band at a screen's top where the pointer calls the notch
inline constexpr double followDelay = 0.3; ///< seconds that the pointer must rest there
inline constexpr double minPillWidth = 160;
inline constexpr double maxPillWidth = 260;
inline constexpr double minPillHeight = 24;
inline constexpr double maxPillHeight = 40;
inline constexpr double defaultPillWidth = 200;
inline constexpr double defaultPillHeight = 32;

/// The first screen with a notch, else the primary one, else the first; nothing without screens.
std::optional<ScreenInfo> home(const QList<ScreenInfo>& screens);
/// Where the notch should be, given where it is (`current`, a screen's id) and the pointer.
std::optional<ScreenInfo> target(
    const QList<ScreenInfo>& screens, NotchScreenMode mode, QPointF pointer, std::optional<quint32> current);
/// The pill on a screen without a notch, its size held to what is allowed, hanging from the top's middle.
QRectF pillRect(const QRectF& screen, double width, double height);

} // namespace NotchScreen

} // namespace kestro
