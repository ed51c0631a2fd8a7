#include "SymbolDrawings.h"

#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <cmath>
#include <numbers>

namespace kestro::drawings {

namespace {

// Filled, not stroked: the painter makes no line thinner than a pixel, and the glyph would outgrow its box at 12
// points.
void line(QPainter& painter, const QPainterPath& path, qreal width, Qt::PenCapStyle cap)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(cap);
    stroker.setJoinStyle(Qt::RoundJoin);
    painter.fillPath(stroker.createStroke(path), Qt::black);
}

QPainterPath between(const QPointF& from, const QPointF& to)
{
    QPainterPath path(from);
    path.lineTo(to);
    return path;
}

} // namespace

void splitRectangle(QPainter& painter)
{
    // Lines run on half units so that they fill whole pixels at 16 points.
    QPainterPath frame;
    frame.addRoundedRect(QRectF(0.5, 1.5, 15, 13), 2, 2);
    line(painter, frame, 1, Qt::FlatCap);
    line(painter, between({ 1, 7.5 }, { 15, 7.5 }), 1, Qt::FlatCap);
    line(painter, between({ 7.5, 2 }, { 7.5, 14 }), 1, Qt::FlatCap);
}

void frameCorners(QPainter& painter)
{
    QPainterPath corner(QPointF(-7.3, -3.8));
    corner.lineTo(-7.3, -5.3);
    corner.arcTo(QRectF(-7.3, -7.3, 4, 4), 180, -90);
    corner.lineTo(-3.8, -7.3);
    painter.save();
    painter.translate(8, 8);
    for (int quarter = 0; quarter < 4; ++quarter) {
        line(painter, corner, 1.2, Qt::RoundCap);
        painter.rotate(90);
    }
    painter.restore();
}

void batteryCharge(QPainter& painter)
{
    QPainterPath charge;
    charge.addRoundedRect(QRectF(2, 6, 7.5, 4), 0.6, 0.6);
    painter.fillPath(charge, Qt::black);
}

void pointerWithRays(QPainter& painter)
{
    constexpr QPointF tip(6, 6);
    QPainterPath arrow(tip);
    arrow.lineTo(15, 9.4);
    arrow.lineTo(11.2, 11.2);
    arrow.lineTo(9.4, 15);
    arrow.closeSubpath();
    painter.fillPath(arrow, Qt::black);
    line(painter, arrow, 1.2, Qt::RoundCap);

    for (const double degrees : { 0, 45, 90, 135, 180, 225, 270 }) {
        const double angle = degrees * std::numbers::pi / 180;
        const QPointF direction(std::cos(angle), -std::sin(angle));
        line(painter, between(tip + direction * 3.4, tip + direction * 5.4), 1.2, Qt::RoundCap);
    }
}

void noteLines(QPainter& painter)
{
    line(painter, between({ 4.5, 5.5 }, { 11.5, 5.5 }), 1, Qt::RoundCap);
    line(painter, between({ 4.5, 8.5 }, { 8.5, 8.5 }), 1, Qt::RoundCap);
}

} // namespace kestro::drawings
