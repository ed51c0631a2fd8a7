#include "SurfaceShape.h"

#include "Shadow.h"

#include <QPainter>
#include <QTransform>

#include <cmath>

namespace kestro {

namespace {

constexpr qreal shadowBlur = 14;
constexpr qreal shadowDrop = 4;
constexpr qreal tintStrength = 0.32;

/// The shape growing out of the right edge, from the upper end of the edge to the lower; open along the edge.
QPainterPath flaredPath(const QSizeF& size, qreal radius, qreal flare, qreal inset)
{
    // Outwards of a corner the hairline's arc is tighter, and wider inside of a flare.
    const qreal r = radius - inset;
    const qreal f = flare + inset;
    const qreal top = flare + inset;
    const qreal bottom = size.height() - flare - inset;
    const qreal left = inset;
    const qreal right = size.width();
    QPainterPath path(QPointF(right, top - f));
    path.arcTo(QRectF(right - 2 * f, top - 2 * f, 2 * f, 2 * f), 0, -90);
    path.lineTo(left + r, top);
    path.arcTo(QRectF(left, top, 2 * r, 2 * r), 90, 90);
    path.lineTo(left, bottom - r);
    path.arcTo(QRectF(left, bottom - 2 * r, 2 * r, 2 * r), 180, 90);
    path.lineTo(right - f, bottom);
    path.arcTo(QRectF(right - 2 * f, bottom, 2 * f, 2 * f), 90, -90);
    return path;
}

/// Carries the shape of the right edge to the frame at `anchor`.
QTransform placed(const QRectF& frame, SurfaceShape::Anchor anchor)
{
    switch (anchor) {
    case SurfaceShape::Anchor::left:
        return QTransform(-1, 0, 0, 1, frame.right(), frame.top());
    case SurfaceShape::Anchor::bottom:
        return QTransform(0, 1, 1, 0, frame.left(), frame.top());
    default:
        return QTransform::fromTranslate(frame.left(), frame.top());
    }
}

QPainterPath pathOf(const SurfaceShape& shape, const QRectF& frame, qreal inset)
{
    if (shape.anchor == SurfaceShape::Anchor::none) {
        const QRectF inner = frame.adjusted(inset, inset, -inset, -inset);
        const qreal radius = std::min({ shape.radius - inset, inner.width() / 2, inner.height() / 2 });
        QPainterPath path;
        path.addRoundedRect(inner, radius, radius);
        return path;
    }
    const bool lying = shape.anchor == SurfaceShape::Anchor::bottom;
    const QSizeF size = lying ? frame.size().transposed() : frame.size();
    return placed(frame, shape.anchor).map(flaredPath(size, shape.radius, shape.flare, inset));
}

QMargins bleedOf(const SurfaceShape& shape, const SurfacePaint& paint, qreal ratio)
{
    if (paint.shadow <= 0) {
        return {};
    }
    const int reach = static_cast<int>(std::ceil((shadowBlur + shadowDrop) * ratio));
    QMargins bleed(reach, reach, reach, reach);
    // Nothing is seen beyond the screen's edge.
    if (shape.anchor == SurfaceShape::Anchor::left) {
        bleed.setLeft(0);
    } else if (shape.anchor == SurfaceShape::Anchor::right) {
        bleed.setRight(0);
    } else if (shape.anchor == SurfaceShape::Anchor::bottom) {
        bleed.setBottom(0);
    }
    return bleed;
}

void drawShadow(QImage& image, const QPainterPath& outline, qreal opacity, qreal ratio)
{
    QImage mask(image.size(), QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(outline.translated(0, shadowDrop * ratio), QColor(0, 0, 0, qRound(opacity * 255)));
    }
    blurAlpha(mask, shadowBlur * ratio);
    QPainter painter(&image);
    painter.drawImage(0, 0, mask);
    // A translucent surface would be darkened by its own shadow.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(outline, Qt::black);
}

} // namespace

QPainterPath SurfaceShape::outline(const QRectF& frame) const
{
    QPainterPath path = pathOf(*this, frame, 0);
    path.closeSubpath();
    return path;
}

QRegion SurfaceShape::region(const QRectF& frame) const { return QRegion(outline(frame).toFillPolygon().toPolygon()); }

QPainterPath SurfaceShape::border(const QRectF& frame, qreal inset) const { return pathOf(*this, frame, inset); }

qreal SurfaceShape::endLength() const { return anchor == Anchor::none ? radius : radius + flare; }

SurfacePicture drawSurface(const SurfaceShape& shape, const SurfacePaint& paint, qreal ratio)
{
    SurfaceShape scaled = shape;
    scaled.radius *= ratio;
    scaled.flare *= ratio;
    const QMargins bleed = bleedOf(shape, paint, ratio);
    // The shadow of a corner reaches as far along the straight side as it is blurred.
    const int end = static_cast<int>(std::ceil(scaled.endLength())) + std::max(bleed.left(), bleed.right());
    const QRectF frame(bleed.left(), bleed.top(), 2 * end + 1, 2 * end + 1);

    SurfacePicture result;
    result.bleed = bleed;
    result.corners = bleed + QMargins(end, end, end, end);
    result.image = QImage(frame.marginsAdded(bleed).size().toSize(), QImage::Format_ARGB32_Premultiplied);
    result.image.fill(Qt::transparent);

    const QPainterPath outline = scaled.outline(frame);
    if (paint.shadow > 0) {
        drawShadow(result.image, outline, paint.shadow, ratio);
    }
    QPainter painter(&result.image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(
        paint.shadow > 0 ? QPainter::CompositionMode_Plus : QPainter::CompositionMode_SourceOver);
    painter.fillPath(outline, paint.fill);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    if (paint.tint.alpha() > 0) {
        QColor tint = paint.tint;
        tint.setAlphaF(tint.alphaF() * static_cast<float>(tintStrength));
        painter.fillPath(outline, tint);
    }
    const qreal width = std::max(1.0, std::floor(ratio));
    painter.strokePath(scaled.border(frame, width / 2), QPen(paint.hairline, width));
    return result;
}

} // namespace kestro
