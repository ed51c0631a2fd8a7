#include "Kestro/Statistics/ChartItem.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace kestro {

QImage ChartItem::picture(QSize pixels, qreal ratio)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (m_points.size() < 2 || m_limit <= 0 || m_seconds <= 0)
        return image;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal stroke = 1.5 * ratio;
    const qreal height = pixels.height() - stroke;
    const auto place = [&](QPointF point) {
        return QPointF(pixels.width() * (1 - point.x() / m_seconds),
            stroke / 2 + height * (1 - std::clamp(point.y() / m_limit, 0.0, 1.0)));
    };
    QPainterPath line(place(m_points.first()));
    for (const QPointF& each : m_points)
        line.lineTo(place(each));
    QPainterPath ground = line;
    ground.lineTo(place(m_points.last()).x(), pixels.height());
    ground.lineTo(place(m_points.first()).x(), pixels.height());
    ground.closeSubpath();
    QColor soft = m_color;
    soft.setAlphaF(0.16F);
    painter.fillPath(ground, soft);
    painter.strokePath(line, QPen(m_color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    return image;
}

} // namespace kestro
