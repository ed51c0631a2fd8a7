#pragma once

#include <QImage>
#include <QQuickItem>

namespace kestro {

/// An item that is drawn once into a picture and then shown, until its looks change.
/// Shown at the picture's own size it is copied pixel by pixel, so that it is crisp wherever it stands;
/// at any other size it is scaled smoothly. Derived classes must name it in full: the generator of QML's type
/// descriptions does not look a base up in its namespace, and views that use the class would not be compiled.
class PictureItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS
public:
    explicit PictureItem(QQuickItem* parent = nullptr);

protected:
    /// The picture of `pixels`; `ratio` device pixels are a point. Called while the main thread is held.
    virtual QImage picture(QSize pixels, qreal ratio) = 0;

    /// How large a picture to draw where `wanted` device pixels are shown.
    virtual QSize pictureSize(QSize wanted) const { return wanted; }

    /// To be called when what the picture shows has changed.
    void redraw();

    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;

private:
    bool m_stale = true;
    QSize m_drawn;
};

} // namespace kestro
