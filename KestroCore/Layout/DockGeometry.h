#pragma once

#include "KestroCore/Layout/DockTypes.h"

#include <QPointF>

/// Where the dock, its pill and its card stand on an edge of a screen. Screen coordinates throughout: y upwards.
namespace kestro::DockGeometry {

inline constexpr double margin = 6; ///< between the dock and its card
inline constexpr double detachedGap = 8; ///< between a detached dock and the screen's edge
inline constexpr double flare = 10; ///< extra length at each end of an attached dock
inline constexpr double hotZoneDepth = 2; ///< of the strip at the edge that wakes the dock
inline constexpr double pillLength = 44; ///< along the edge
inline constexpr double pillThickness = 6;

/// `length` is the strip's without its flares; cut to the screen's. `center` is a coordinate along the edge,
/// the screen's middle when absent; a dock that would leave the screen slides back onto it.
QRectF dockFrame(const QRectF& screen, SidebarEdge edge, DockPlacement placement, double length, double thickness,
    std::optional<double> center);
QRectF pillFrame(const QRectF& screen, SidebarEdge edge, std::optional<double> center);
/// The whole side of the screen, `depth` deep.
QRectF bandFrame(const QRectF& screen, SidebarEdge edge, double depth);
/// The strip at the screen's edge that wakes the dock, as long as the dock.
QRectF hotZone(const QRectF& screen, SidebarEdge edge, const QRectF& dock);
/// A card of `size` beside the dock, its middle at `anchor` along the edge, kept on the screen in that direction only.
QRectF cardFrame(QSizeF size, const QRectF& dock, double anchor, SidebarEdge edge, const QRectF& screen);

/// Whether the pointer counts as on the dock, on the way from the screen's edge to it, or on its card.
bool isInside(
    QPointF point, const QRectF& dock, const std::optional<QRectF>& card, const QRectF& screen, SidebarEdge edge);
/// Whether a step of the pointer left the screen across the part of its edge where the dock is.
bool crossesEdge(QPointF from, QPointF to, const QRectF& screen, SidebarEdge edge, const QRectF& dock);

/// The distance of `point` from the leading end of a strip that fills `rect`.
double position(QPointF point, const QRectF& rect, SidebarEdge edge);
/// From a view that fills `frame` (y downwards from its top left) to screen coordinates.
QRectF screenRect(const QRectF& rect, const QRectF& frame);

} // namespace kestro::DockGeometry

namespace kestro::CardGeometry {

/// The height of the open notch: notch, strip and card (none: nothing), at most the canvas.
double notchHeight(double notch, double strip, std::optional<double> card, double canvas);

} // namespace kestro::CardGeometry
