#include "Kestro/Surfaces/SidebarFrame.h"

#include "KestroCore/Support/Geometry.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr double capLength = 28;
constexpr double lead = capLength - DockLayout::padding;
constexpr double endRoom = 20; // kept free of the screen's side, beside the flares
constexpr double bandRoom = 24; // beyond the swollen icons

QRectF capOf(const QRectF& dock, SidebarEdge edge, double flare)
{
    if (edge == SidebarEdge::bottom)
        return { dock.x() + flare, dock.y(), capLength, dock.height() };
    return { dock.x(), geometry::maxY(dock) - flare - capLength, dock.width(), capLength };
}

} // namespace

qsizetype DockArrangement::rowOf(WidgetKind kind) const
{
    const auto found = std::ranges::find_if(items, [kind](const LaunchItem& item) { return item.widget() == kind; });
    return found == items.end() ? -1 : found - items.begin();
}

QRectF SidebarFrame::iconRect(qsizetype index, SidebarEdge edge) const
{
    const QRectF rect =
        viewRect(anchor(edge), arrangement.layout.frames[std::size_t(index)], arrangement.layout.thickness);
    const QPointF corner(dock.x() - band.x(), geometry::maxY(band) - geometry::maxY(dock));
    const QPointF along = edge == SidebarEdge::bottom ? QPointF(inset, 0) : QPointF(0, inset);
    return rect.translated(corner + along);
}

double SidebarFrame::anchorOf(qsizetype index, SidebarEdge edge) const
{
    const double middle = inset + geometry::midX(arrangement.measure.frames[std::size_t(index)]);
    return edge == SidebarEdge::bottom ? rest.x() + middle : geometry::maxY(rest) - middle;
}

QRectF SidebarFrame::cardRect(QSizeF size, qsizetype index, SidebarEdge edge, const QRectF& visible) const
{
    return DockGeometry::cardFrame(size, rest, anchorOf(index, edge), edge, visible);
}

SidebarFrame placeDock(const QList<LaunchItem>& items, const QList<DockItemSize>& sizes, const SidebarPrefs& prefs,
    const QRectF& visible, const DockMoment& moment)
{
    const SidebarEdge edge = prefs.edge;
    SidebarFrame frame;
    frame.inset = prefs.placement == DockPlacement::attached ? DockGeometry::flare : 0;

    const double side = edge == SidebarEdge::bottom ? visible.width() : visible.height();
    const double available = side - 2 * (frame.inset + DockGeometry::detachedGap) - endRoom;
    DockArrangement& arrangement = frame.arrangement;
    arrangement.items = items;
    arrangement.sizes = sizes;
    arrangement.iconSize = DockLayout::fittingIconSize(sizes, points(prefs.iconSize), available);
    arrangement.measure = DockLayout::layout(sizes, arrangement.iconSize, lead, std::nullopt, 1, std::nullopt);
    arrangement.layout = moment.pointer && prefs.maxScale > 1
        ? DockLayout::layout(sizes, arrangement.iconSize, lead, moment.pointer, prefs.maxScale, std::nullopt)
        : arrangement.measure;

    const bool pill = prefs.visibility == DockVisibility::pill;
    const auto center = pill ? moment.pillCenter : std::nullopt;
    frame.collapsed = pill && !moment.pillOpen;
    if (frame.collapsed) {
        frame.dock = DockGeometry::pillFrame(visible, edge, std::nullopt);
    } else {
        frame.dock = DockGeometry::dockFrame(
            visible, edge, prefs.placement, arrangement.layout.length, arrangement.layout.thickness, center);
        frame.cap = capOf(frame.dock, edge, frame.inset);
    }

    const double swell = arrangement.iconSize * prefs.maxScale + 2 * DockLayout::padding;
    frame.band = DockGeometry::bandFrame(visible, edge, swell + bandRoom);
    frame.rest = DockGeometry::dockFrame(visible, edge, prefs.placement, arrangement.measure.length, swell, center);
    return frame;
}

} // namespace kestro
