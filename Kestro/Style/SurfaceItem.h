#pragma once

#include "SurfaceShape.h"

#include <QQuickItem>

namespace kestro {

/// The ground of a panel: a shape with a fill, a tint, a hairline and a shadow that falls outside of the item.
/// It costs the memory of its corners, whatever its size, and nothing when it is resized. Views use `CardSurface`
/// and `DockSurface`, which know the theme.
class SurfaceItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(Edge edge READ edge WRITE setEdge NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor fill READ fill WRITE setFill NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor tint READ tint WRITE setTint NOTIFY lookChanged FINAL)
    Q_PROPERTY(QColor hairline READ hairline WRITE setHairline NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal shadow READ shadow WRITE setShadow NOTIFY lookChanged FINAL)
public:
    /// The screen edge that the surface grows out of, curving into it at both ends.
    enum Edge { Detached, LeftEdge, RightEdge, BottomEdge };
    Q_ENUM(Edge)

    explicit SurfaceItem(QQuickItem* parent = nullptr);

    Edge edge() const { return static_cast<Edge>(m_shape.anchor); }
    void setEdge(Edge edge);
    qreal radius() const { return m_shape.radius; }
    void setRadius(qreal radius);
    QColor fill() const { return m_paint.fill; }
    void setFill(const QColor& fill);
    QColor tint() const { return m_paint.tint; }
    void setTint(const QColor& tint);
    QColor hairline() const { return m_paint.hairline; }
    void setHairline(const QColor& hairline);
    qreal shadow() const { return m_paint.shadow; }
    void setShadow(qreal opacity);

    /// The painted shape without its shadow, in the item's coordinates: what takes the pointer.
    QPainterPath outline() const { return m_shape.outline(QRectF(QPointF(0, 0), size())); }

Q_SIGNALS:
    void lookChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    template <typename Part, typename T> void change(Part& part, T Part::*field, const T& value);

    SurfaceShape m_shape;
    SurfacePaint m_paint;
    bool m_stale = true;
};

} // namespace kestro
