#pragma once

#include <QPointF>
#include <QRectF>
#include <optional>
#include <span>
#include <vector>

namespace kestro {

/// One item's length along the strip.
struct DockItemSize {
    double units = 1; ///< multiples of the icon size
    double fixed = 0; ///< points on top of that
    bool magnifies = true;

    static const DockItemSize icon;
    static const DockItemSize divider;

    constexpr double length(double iconSize) const { return units * iconSize + fixed; }
    bool operator==(const DockItemSize&) const = default;
};

/// Space held open for a drag before the item at `index`, or behind the last one.
struct DockGap {
    qsizetype index = 0;
    double length = 0; ///< points

    bool operator==(const DockGap&) const = default;
};

/// A strip laid flat: x along it from its leading end, y across it. In points.
struct DockLayout {
    std::vector<QRectF> frames; ///< one per item
    double length = 0; ///< of the whole strip, along the edge
    double thickness = 0; ///< across it

    bool operator==(const DockLayout&) const = default;

    static constexpr double padding = 8; ///< inside the strip, on every side
    static constexpr double spacing = 6; ///< between items
    static constexpr double dividerMargin = 8; ///< on each side of a divider's line of 1 point
    static constexpr double falloffNeighbours = 3; ///< how many icon pitches the magnification reaches
    static constexpr double minScale = 1.2; ///< the least and
    static constexpr double maxScaleLimit = 2.0; ///< the most that the largest scale can be set to
    static constexpr double removalDistance = 60; ///< how far from the dock a drag means "remove"

    /// `lead` is left free before the first item; `pointer` is a position along the strip at rest, absent when nothing
    /// is magnified; `maxScale` is the scale under the pointer. Runs on every pointer move: its frames are all it
    /// allocates.
    static DockLayout layout(std::span<const DockItemSize> items, double iconSize, double lead,
        std::optional<double> pointer, double maxScale, const std::optional<DockGap>& gap);

    /// A bump, flat at both ends: `maxScale` (held to 1...2) at distance 0, 1 from `radius` on.
    static double scale(double distance, double radius, double maxScale);

    /// The whole-point icon size at which the strip fits into `available`: at most `preferred`, never under 12.
    static double fittingIconSize(std::span<const DockItemSize> items, double preferred, double available);

    /// Between which items a position along the strip lies: the number of items whose middle is before it.
    static qsizetype insertionIndex(double position, std::span<const QRectF> frames);

    /// Whether `point` is so far from `dock` that letting go removes the item.
    static bool removes(QPointF point, const QRectF& dock);
};

inline constexpr DockItemSize DockItemSize::icon{ 1, 0, true };
inline constexpr DockItemSize DockItemSize::divider{ 0, 2 * DockLayout::dividerMargin + 1, false };

} // namespace kestro
