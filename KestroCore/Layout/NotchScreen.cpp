#include "KestroCore/Layout/NotchScreen.h"

#include "KestroCore/Support/Geometry.h"

#include <algorithm>

namespace kestro {

using namespace geometry;

namespace {
template <class Test> std::optional<ScreenInfo> first(const QList<ScreenInfo>& screens, Test test)
{
    const auto found = std::find_if(screens.begin(), screens.end(), test);
    return found == screens.end() ? std::nullopt : std::optional(*found);
}
} // namespace

QString title(NotchScreenMode mode)
{
    return mode == NotchScreenMode::builtIn ? QStringLiteral("Built-in display")
                                            : QStringLiteral("Display with the pointer");
}

std::optional<ScreenInfo> NotchScreen::home(const QList<ScreenInfo>& screens)
{
    if (auto notched = first(screens, [](const ScreenInfo& screen) { return screen.hasNotch; }))
        return notched;
    if (auto primary = first(screens, [](const ScreenInfo& screen) { return screen.frame.topLeft() == QPointF(0, 0); }))
        return primary;
    return first(screens, [](const ScreenInfo&) { return true; });
}

std::optional<ScreenInfo> NotchScreen::target(
    const QList<ScreenInfo>& screens, NotchScreenMode mode, QPointF pointer, std::optional<quint32> current)
{
    if (mode == NotchScreenMode::builtIn)
        return home(screens);
    // Closed at the top, unlike a rectangle: the topmost point of the screen calls too.
    const auto called = first(screens, [&](const ScreenInfo& screen) {
        return pointer.x() >= minX(screen.frame) && pointer.x() < maxX(screen.frame)
            && pointer.y() >= maxY(screen.frame) - edgeDistance && pointer.y() <= maxY(screen.frame);
    });
    if (called)
        return called;
    const auto here = first(screens, [&](const ScreenInfo& screen) { return screen.id == current; });
    return here ? here : home(screens);
}

QRectF NotchScreen::pillRect(const QRectF& screen, double width, double height)
{
    const double w = std::clamp(width, minPillWidth, maxPillWidth);
    const double h = std::clamp(height, minPillHeight, maxPillHeight);
    return { midX(screen) - w / 2, maxY(screen) - h, w, h };
}

} // namespace kestro
