#include "KestroCore/Layout/DockGeometry.h"

#include "KestroCore/Support/Geometry.h"

#include <algorithm>

namespace kestro {

using namespace geometry;

namespace {
// A stretch longer than the room ends at its far end; std::clamp would be undefined for it.
double held(double start, double length, double low, double high)
{
    return std::min(std::max(start, low), high - length);
}

// A rectangle at the edge, `inset` from it, `length` along it and `thickness` deep, round `center` as far as it fits.
QRectF atEdge(
    const QRectF& screen, SidebarEdge edge, double length, double thickness, double inset, std::optional<double> center)
{
    if (edge == SidebarEdge::bottom) {
        const double width = std::min(screen.width(), length);
        const double x = held(center.value_or(midX(screen)) - width / 2, width, minX(screen), maxX(screen));
        return { x, minY(screen) + inset, width, thickness };
    }
    const double height = std::min(screen.height(), length);
    const double y = held(center.value_or(midY(screen)) - height / 2, height, minY(screen), maxY(screen));
    const double x = edge == SidebarEdge::left ? minX(screen) + inset : maxX(screen) - inset - thickness;
    return { x, y, thickness, height };
}
} // namespace

QRectF DockGeometry::dockFrame(const QRectF& screen, SidebarEdge edge, DockPlacement placement, double length,
    double thickness, std::optional<double> center)
{
    const bool attached = placement == DockPlacement::attached;
    return atEdge(screen, edge, length + (attached ? 2 * flare : 0), thickness, attached ? 0 : detachedGap, center);
}

QRectF DockGeometry::pillFrame(const QRectF& screen, SidebarEdge edge, std::optional<double> center)
{
    return atEdge(screen, edge, pillLength, pillThickness, 0, center);
}

QRectF DockGeometry::bandFrame(const QRectF& screen, SidebarEdge edge, double depth)
{
    if (edge == SidebarEdge::bottom)
        return { minX(screen), minY(screen), screen.width(), depth };
    const double x = edge == SidebarEdge::left ? minX(screen) : maxX(screen) - depth;
    return { x, minY(screen), depth, screen.height() };
}

QRectF DockGeometry::hotZone(const QRectF& screen, SidebarEdge edge, const QRectF& dock)
{
    const QRectF band = bandFrame(screen, edge, hotZoneDepth);
    return edge == SidebarEdge::bottom ? QRectF(dock.x(), band.y(), dock.width(), band.height())
                                       : QRectF(band.x(), dock.y(), band.width(), dock.height());
}

QRectF DockGeometry::cardFrame(QSizeF size, const QRectF& dock, double anchor, SidebarEdge edge, const QRectF& screen)
{
    if (edge == SidebarEdge::bottom) {
        const double x = held(anchor - size.width() / 2, size.width(), minX(screen), maxX(screen));
        return { { x, maxY(dock) + margin }, size };
    }
    const double y = held(anchor - size.height() / 2, size.height(), minY(screen), maxY(screen));
    const double x = edge == SidebarEdge::left ? maxX(dock) + margin : minX(dock) - margin - size.width();
    return { { x, y }, size };
}

bool DockGeometry::isInside(
    QPointF point, const QRectF& dock, const std::optional<QRectF>& card, const QRectF& screen, SidebarEdge edge)
{
    // With the hot zone in it, a detached dock has no dead band between itself and the edge.
    const QRectF reach = united(grown(dock, 2), hotZone(screen, edge, dock));
    const bool bottom = edge == SidebarEdge::bottom;
    if (contains(grown(reach, bottom ? 0 : 1, bottom ? 1 : 0), point))
        return true;
    return card && contains(grown(*card, 2), point);
}

bool DockGeometry::crossesEdge(QPointF from, QPointF to, const QRectF& screen, SidebarEdge edge, const QRectF& dock)
{
    if (edge == SidebarEdge::bottom) {
        const double line = minY(screen);
        const bool falls = from.y() >= line && to.y() < line;
        if (!falls)
            return false;
        const double x = from.x() + (to.x() - from.x()) * (line - from.y()) / (to.y() - from.y());
        return x >= minX(dock) && x <= maxX(dock);
    }
    const bool left = edge == SidebarEdge::left;
    const double line = left ? minX(screen) : maxX(screen);
    const bool crosses = left ? from.x() >= line && to.x() < line : from.x() < line && to.x() >= line;
    if (!crosses)
        return false;
    const double y = from.y() + (to.y() - from.y()) * (line - from.x()) / (to.x() - from.x());
    return y >= minY(dock) && y <= maxY(dock);
}

double DockGeometry::position(QPointF point, const QRectF& rect, SidebarEdge edge)
{
    return edge == SidebarEdge::bottom ? point.x() - minX(rect) : maxY(rect) - point.y();
}

QRectF DockGeometry::screenRect(const QRectF& rect, const QRectF& frame)
{
    return { minX(frame) + minX(rect), maxY(frame) - maxY(rect), rect.width(), rect.height() };
}

double CardGeometry::notchHeight(double notch, double strip, std::optional<double> card, double canvas)
{
    return std::min(notch + strip + card.value_or(0), canvas);
}

} // namespace kestro
