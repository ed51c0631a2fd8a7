#pragma once

#include "SurfaceShape.h"

#include <QSGNode>
#include <QSGTexture>

#include <array>
#include <memory>

class QQuickWindow;
class QSGImageNode;

namespace kestro {

/// Shows a surface's picture at any size: corners as they are, sides and middle stretched. Qt's own node of this kind
/// takes whole points for its corners under the software adaptation, which blurs them at fractional scales.
class PatchNode : public QSGNode {
public:
    PatchNode();

    /// Takes a new picture.
    void setPicture(QQuickWindow& window, const SurfacePicture& picture);

    /// Lays the picture over a frame of `size` points.
    void layOut(QSizeF size, qreal ratio);

private:
    SurfacePicture m_picture; ///< without its image, which the texture has
    QSize m_pixels;
    std::unique_ptr<QSGTexture> m_texture;
    std::array<QSGImageNode*, 9> m_parts{};
};

} // namespace kestro
