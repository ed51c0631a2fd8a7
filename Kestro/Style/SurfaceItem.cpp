#include "SurfaceItem.h"

#include "PatchNode.h"

#include <QQuickWindow>

namespace kestro {

SurfaceItem::SurfaceItem(QQuickItem* parent)
    : QQuickItem(parent)
{
    static_assert(static_cast<int>(SurfaceShape::Anchor::bottom) == BottomEdge);
    setFlag(ItemHasContents);
}

template <typename Part, typename T> void SurfaceItem::change(Part& part, T Part::*field, const T& value)
{
    if (part.*field != value) {
        part.*field = value;
        m_stale = true;
        update();
        Q_EMIT lookChanged();
    }
}

void SurfaceItem::setEdge(Edge edge)
{
    change(m_shape, &SurfaceShape::anchor, static_cast<SurfaceShape::Anchor>(edge));
}

void SurfaceItem::setRadius(qreal radius) { change(m_shape, &SurfaceShape::radius, radius); }
void SurfaceItem::setFill(const QColor& fill) { change(m_paint, &SurfacePaint::fill, fill); }
void SurfaceItem::setTint(const QColor& tint) { change(m_paint, &SurfacePaint::tint, tint); }
void SurfaceItem::setHairline(const QColor& hairline) { change(m_paint, &SurfacePaint::hairline, hairline); }
void SurfaceItem::setShadow(qreal opacity) { change(m_paint, &SurfacePaint::shadow, opacity); }

QSGNode* SurfaceItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    std::unique_ptr<PatchNode> node(static_cast<PatchNode*>(old));
    if (size().isEmpty()) {
        return nullptr;
    }
    const qreal ratio = window()->effectiveDevicePixelRatio();
    if (!node || m_stale) {
        if (!node) {
            node = std::make_unique<PatchNode>();
        }
        node->setPicture(*window(), drawSurface(m_shape, m_paint, ratio));
        m_stale = false;
    }
    node->layOut(size(), ratio);
    return node.release();
}

void SurfaceItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) {
        update();
    }
}

void SurfaceItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        m_stale = true;
        update();
    }
    QQuickItem::itemChange(change, data);
}

} // namespace kestro
