#include "PictureItem.h"

#include <QQuickWindow>
#include <QSGImageNode>

#include <memory>

namespace kestro {

PictureItem::PictureItem(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void PictureItem::redraw()
{
    m_stale = true;
    update();
}

QSGNode* PictureItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    std::unique_ptr<QSGImageNode> node(static_cast<QSGImageNode*>(old));
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize wanted(qRound(width() * ratio), qRound(height() * ratio));
    if (wanted.isEmpty()) {
        return nullptr;
    }
    const QSize size = pictureSize(wanted);
    if (!node || m_stale || size != m_drawn) {
        const QImage image = picture(size, ratio);
        if (image.isNull()) {
            return nullptr;
        }
        if (!node) {
            node.reset(window()->createImageNode());
            node->setOwnsTexture(true);
        }
        node->setTexture(window()->createTextureFromImage(image));
        m_drawn = size;
        m_stale = false;
    }
    const bool exact = size == wanted;
    node->setFiltering(exact ? QSGTexture::Nearest : QSGTexture::Linear);
    node->setRect(exact ? QRectF(QPointF(0, 0), QSizeF(wanted) / ratio) : QRectF(0, 0, width(), height()));
    return node.release();
}

void PictureItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) {
        update();
    }
}

void PictureItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) {
        redraw();
    }
    QQuickItem::itemChange(change, data);
}

} // namespace kestro
