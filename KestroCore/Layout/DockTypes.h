#pragma once

#include "KestroCore/Support/RawString.h"

#include <QRectF>
#include <QSizeF>

namespace kestro {

enum class SidebarEdge { left, right, bottom };
enum class DockPlacement { attached, detached };
enum class DockVisibility { dock, autoHide, pill };
enum class DockMaterial { solid, translucent, glass };
enum class DockIconSize { small, medium, large };
/// `plain` has no colour, `accent` the desktop's, `graphite` the system's gray; the others are system colours.
enum class DockTint { plain, accent, red, orange, yellow, green, blue, purple, pink, graphite };

template <> struct RawStrings<SidebarEdge> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("left"), QLatin1StringView("right"),
        QLatin1StringView("bottom") };
};
template <> struct RawStrings<DockPlacement> {
    static constexpr std::array<QLatin1StringView, 2> values{ QLatin1StringView("attached"),
        QLatin1StringView("detached") };
};
template <> struct RawStrings<DockVisibility> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("dock"), QLatin1StringView("autoHide"),
        QLatin1StringView("pill") };
};
template <> struct RawStrings<DockMaterial> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("solid"),
        QLatin1StringView("translucent"), QLatin1StringView("glass") };
};
template <> struct RawStrings<DockIconSize> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("small"), QLatin1StringView("medium"),
        QLatin1StringView("large") };
};
template <> struct RawStrings<DockTint> {
    static constexpr std::array<QLatin1StringView, 10> values{ QLatin1StringView("plain"), QLatin1StringView("accent"),
        QLatin1StringView("red"), QLatin1StringView("orange"), QLatin1StringView("yellow"), QLatin1StringView("green"),
        QLatin1StringView("blue"), QLatin1StringView("purple"), QLatin1StringView("pink"),
        QLatin1StringView("graphite") };
};

/// The side of an icon in points.
constexpr double points(DockIconSize size)
{
    return size == DockIconSize::small ? 28 : size == DockIconSize::medium ? 36 : 48;
}

/// The size that preferences mean: a valid `raw`; else, in the sidebar, what the older setting in points
/// (28 or 44, exactly) stood for; else medium.
DockIconSize storedIconSize(const std::optional<QString>& raw, double legacyPoints, bool sidebar);

/// Which side a strip hangs from, and the way from its flat layout coordinates to its view.
enum class DockAnchor { left, right, bottom, top };

constexpr DockAnchor anchor(SidebarEdge edge)
{
    return edge == SidebarEdge::left ? DockAnchor::left
        : edge == SidebarEdge::right ? DockAnchor::right
                                     : DockAnchor::bottom;
}
constexpr bool isHorizontal(DockAnchor anchor) { return anchor == DockAnchor::bottom || anchor == DockAnchor::top; }
QSizeF viewSize(DockAnchor anchor, double length, double thickness);
/// `rect`, in layout coordinates, in the view of a strip of `thickness`. The side at the screen's edge stays
/// where it is while the strip swells.
QRectF viewRect(DockAnchor anchor, const QRectF& rect, double thickness);

} // namespace kestro
