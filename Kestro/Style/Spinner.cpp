#include "Spinner.h"

#include <QPainter>
#include <QQuickWindow>
#include <QTimerEvent>

namespace kestro {

namespace {

constexpr float faintest = 0.18F;

} // namespace

Spinner::Spinner(QQuickItem* parent)
    : PictureItem(parent)
{
    setImplicitSize(16, 16);
}

void Spinner::setColor(const QColor& color)
{
    if (m_color != color) {
        m_color = color;
        m_pictures.fill({});
        redraw();
        Q_EMIT colorChanged();
    }
}

QImage Spinner::picture(QSize pixels, qreal ratio)
{
    QImage& image = m_pictures[std::size_t(m_step)];
    if (image.size() == pixels)
        return image;
    image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(pixels.width() / 2.0, pixels.height() / 2.0);
    const qreal side = std::min(pixels.width(), pixels.height());
    const qreal width = std::max(side * 0.11, ratio);
    for (int i = 0; i < spokes; ++i) {
        const int age = (m_step - i + spokes) % spokes;
        QColor color = m_color;
        color.setAlphaF(color.alphaF() * std::max(faintest, 1 - static_cast<float>(age) / (spokes - 1)));
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(i * 360.0 / spokes);
        painter.drawLine(QPointF(0, -side * 0.24), QPointF(0, -side / 2 + width / 2 + 0.25));
        painter.restore();
    }
    return image;
}

void Spinner::itemChange(ItemChange change, const ItemChangeData& data)
{
    PictureItem::itemChange(change, data);
    if (change == ItemSceneChange) {
        disconnect(m_windowShown);
        if (data.window) {
            m_windowShown = connect(data.window, &QWindow::visibleChanged, this, &Spinner::turnIfSeen);
        }
    }
    if (change == ItemSceneChange || change == ItemVisibleHasChanged) {
        turnIfSeen();
    }
}

void Spinner::turnIfSeen()
{
    const bool seen = isVisible() && window() && window()->isVisible();
    if (seen == m_timer.isActive()) {
        return;
    }
    if (seen) {
        m_timer.start(1000 / spokes, this);
    } else {
        m_timer.stop();
    }
    Q_EMIT turningChanged();
}

void Spinner::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_timer.timerId()) {
        m_step = (m_step + 1) % spokes;
        redraw();
    } else {
        PictureItem::timerEvent(event);
    }
}

} // namespace kestro
