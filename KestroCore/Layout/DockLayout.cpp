#include "KestroCore/Layout/DockLayout.h"

#include "KestroCore/Support/Geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kestro {

DockLayout DockLayout::layout(std::span<const DockItemSize> items, double iconSize, double lead,
    std::optional<double> pointer, double maxScale, const std::optional<DockGap>& gap)
{
    DockLayout result;
    result.frames.reserve(items.size());
    const double radius = (iconSize + spacing) * falloffNeighbours;
    double cursor = lead + padding;
    // Where the item would be at rest, without the gap: distances are taken there, so that the bump does not feed on
    // itself.
    double rest = cursor;
    double height = iconSize;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const DockItemSize& item = items[i];
        if (gap && gap->index == qsizetype(i))
            cursor += gap->length;
        const double length = item.length(iconSize);
        const double factor =
            item.magnifies && pointer ? scale(std::abs(rest + length / 2 - *pointer), radius, maxScale) : 1;
        const QRectF frame(cursor, padding, length * factor, item.magnifies ? iconSize * factor : iconSize);
        height = std::max(height, frame.height());
        cursor += frame.width() + spacing;
        rest += length + spacing;
        result.frames.push_back(frame);
    }
    result.thickness = height + 2 * padding;
    if (items.empty() && !gap) {
        result.length = iconSize + 2 * padding + lead;
    } else {
        const bool gapAtEnd = gap && gap->index >= qsizetype(items.size());
        result.length = cursor + (gapAtEnd ? gap->length : 0) - spacing + padding;
    }
    return result;
}

double DockLayout::scale(double distance, double radius, double maxScale)
{
    if (!(radius > 0) || distance >= radius)
        return 1;
    const double most = std::clamp(maxScale, 1.0, 2.0);
    return 1 + (std::cos(std::numbers::pi * distance / radius) + 1) * (most - 1) / 2;
}

double DockLayout::fittingIconSize(std::span<const DockItemSize> items, double preferred, double available)
{
    double units = 0;
    double taken = 2 * padding - spacing;
    for (const DockItemSize& item : items) {
        units += item.units;
        taken += item.fixed + spacing;
    }
    if (units == 0)
        return preferred;
    return std::max(std::min(std::floor((available - taken) / units), preferred), 12.0);
}

qsizetype DockLayout::insertionIndex(double position, std::span<const QRectF> frames)
{
    return std::count_if(
        frames.begin(), frames.end(), [&](const QRectF& frame) { return geometry::midX(frame) < position; });
}

bool DockLayout::removes(QPointF point, const QRectF& dock)
{
    using namespace geometry;
    const double dx = std::max({ minX(dock) - point.x(), 0.0, point.x() - maxX(dock) });
    const double dy = std::max({ minY(dock) - point.y(), 0.0, point.y() - maxY(dock) });
    return std::hypot(dx, dy) > removalDistance;
}

} // namespace kestro
