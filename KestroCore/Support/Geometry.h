#pragma once

#include <QPointF>
#include <QRectF>
#include <algorithm>

/// The edge rules of rectangles, which differ from Qt's: a rectangle holds its near edges and not its far ones.
/// y grows upwards on screens and downwards in views; the names say min and max, never top and bottom.
namespace kestro::geometry {

inline double minX(const QRectF& r) { return r.x(); }
inline double minY(const QRectF& r) { return r.y(); }
inline double maxX(const QRectF& r) { return r.x() + r.width(); }
inline double maxY(const QRectF& r) { return r.y() + r.height(); }
inline double midX(const QRectF& r) { return r.x() + r.width() / 2; }
inline double midY(const QRectF& r) { return r.y() + r.height() / 2; }

/// True for minX <= x < maxX and minY <= y < maxY; nothing lies in an empty rectangle.
inline bool contains(const QRectF& r, QPointF p)
{
    return p.x() >= minX(r) && p.x() < maxX(r) && p.y() >= minY(r) && p.y() < maxY(r);
}

/// The rectangle with every side moved outwards by `dx` and `dy`.
inline QRectF grown(const QRectF& r, double dx, double dy)
{
    return { r.x() - dx, r.y() - dy, r.width() + 2 * dx, r.height() + 2 * dy };
}
inline QRectF grown(const QRectF& r, double by) { return grown(r, by, by); }

/// The smallest rectangle round both. Qt's own ignores an empty rectangle, even where its position matters.
inline QRectF united(const QRectF& a, const QRectF& b)
{
    const double x = std::min(minX(a), minX(b));
    const double y = std::min(minY(a), minY(b));
    return { x, y, std::max(maxX(a), maxX(b)) - x, std::max(maxY(a), maxY(b)) - y };
}

} // namespace kestro::geometry
