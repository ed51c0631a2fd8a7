#include "PatchNode.h"

#include <QQuickWindow>
#include <QSGImageNode>

#include <algorithm>

namespace kestro {

namespace {

struct Cuts {
    std::array<qreal, 4> from; ///< in the picture, pixels
    std::array<qreal, 4> to; ///< in the item, pixels
};

Cuts cuts(int picture, int before, int after, int bleedBefore, int bleedAfter, int frame)
{
    // A frame that is too short for both ends loses from the middle of the picture.
    const int whole = bleedBefore + frame + bleedAfter;
    const int spare = std::min(0, whole - before - after);
    const int half = spare / 2; // in whole pixels: the picture's are not split
    const qreal first = before + half;
    const qreal last = after + spare - half;
    const qreal start = -bleedBefore;
    const qreal end = frame + bleedAfter;
    return { { 0, first, picture - last, static_cast<qreal>(picture) }, { start, start + first, end - last, end } };
}

} // namespace

PatchNode::PatchNode() = default;

void PatchNode::setPicture(QQuickWindow& window, const SurfacePicture& picture)
{
    m_picture = picture;
    m_picture.image = QImage();
    m_pixels = picture.image.size();
    std::unique_ptr<QSGTexture> texture(window.createTextureFromImage(picture.image));
    for (QSGImageNode*& part : m_parts) {
        if (!part) {
            part = window.createImageNode();
            part->setOwnsTexture(false);
            part->setFiltering(QSGTexture::Nearest);
            appendChildNode(part);
        }
        part->setTexture(texture.get());
    }
    m_texture = std::move(texture);
}

void PatchNode::layOut(QSizeF size, qreal ratio)
{
    const QMargins& corners = m_picture.corners;
    const QMargins& bleed = m_picture.bleed;
    const Cuts across = cuts(
        m_pixels.width(), corners.left(), corners.right(), bleed.left(), bleed.right(), qRound(size.width() * ratio));
    const Cuts down = cuts(
        m_pixels.height(), corners.top(), corners.bottom(), bleed.top(), bleed.bottom(), qRound(size.height() * ratio));
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            QSGImageNode* part = m_parts[row * 3 + column];
            part->setSourceRect(QRectF(
                QPointF(across.from[column], down.from[row]), QPointF(across.from[column + 1], down.from[row + 1])));
            part->setRect(QRectF(QPointF(across.to[column], down.to[row]) / ratio,
                QPointF(across.to[column + 1], down.to[row + 1]) / ratio));
        }
    }
}

} // namespace kestro
