#pragma once

#include <QColor>
#include <QImage>
#include <QMargins>
#include <QPainterPath>
#include <QRectF>
#include <QRegion>

namespace kestro {

/// The outline of a surface. The item's rectangle is the whole frame, the flares included.
struct SurfaceShape {
    /// The side of the screen that the shape grows out of; none is a plain rounded rectangle.
    enum class Anchor { none, left, right, bottom };

    Anchor anchor = Anchor::none;
    qreal radius = 12;
    qreal flare = 10;

    bool operator==(const SurfaceShape&) const = default;

    /// The filled area.
    QPainterPath outline(const QRectF& frame) const;

    /// The same for a window's shape, in whole points.
    QRegion region(const QRectF& frame) const;

    /// Where the hairline runs, `inset` inside of the outline: all round, but not along the screen's edge.
    QPainterPath border(const QRectF& frame, qreal inset) const;

    /// How much of each end of the frame is not straight.
    qreal endLength() const;
};

/// The colours and lines of a surface.
struct SurfacePaint {
    QColor fill;
    QColor tint = Qt::transparent; ///< over the fill
    QColor hairline;
    qreal shadow = 0; ///< the shadow's opacity, 0 for none

    bool operator==(const SurfacePaint&) const = default;
};

/// A picture whose corners stay and whose middle is stretched over a frame of any size.
struct SurfacePicture {
    QImage image;
    QMargins corners; ///< in pixels
    QMargins bleed; ///< how far the picture reaches beyond the frame on each side, in pixels
};

/// Draws the smallest picture of a surface at `ratio` device pixels a point.
SurfacePicture drawSurface(const SurfaceShape& shape, const SurfacePaint& paint, qreal ratio);

} // namespace kestro
