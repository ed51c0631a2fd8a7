#include "Kestro/Clipboard/ClipPicture.h"

#include <QPainter>
#include <QPainterPath>

namespace kestro {

void ClipPicture::setImage(const QImage& image)
{
    if (image.cacheKey() == m_image.cacheKey())
        return;
    m_image = image;
    redraw();
    Q_EMIT imageChanged();
}

void ClipPicture::setRounding(qreal rounding)
{
    m_rounding = rounding;
    redraw();
}

QImage ClipPicture::picture(QSize pixels, qreal ratio)
{
    QImage canvas(pixels, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    if (m_image.isNull())
        return canvas;
    QSizeF size = QSizeF(m_image.size()).scaled(pixels, Qt::KeepAspectRatio);
    size = size.boundedTo(QSizeF(m_image.size()) * ratio);
    QRectF place(QPointF(), size);
    place.moveCenter(QRectF(canvas.rect()).center());
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath path;
    path.addRoundedRect(place, m_rounding * ratio, m_rounding * ratio);
    painter.setClipPath(path);
    painter.drawImage(
        place, m_image.scaled(size.toSize().expandedTo({ 1, 1 }), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return canvas;
}

} // namespace kestro
