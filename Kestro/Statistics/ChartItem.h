#pragma once

#include "Kestro/Style/PictureItem.h"

#include <QColor>
#include <QList>
#include <QPointF>

namespace kestro {

/// A figure over the last seconds: a line and the ground below it, the present at the right end.
class ChartItem : public kestro::PictureItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Chart)
    /// Pairs of an age in seconds and a figure, the oldest first.
    Q_PROPERTY(QList<QPointF> points READ points WRITE setPoints NOTIFY changed FINAL)
    Q_PROPERTY(qreal limit READ limit WRITE setLimit NOTIFY changed FINAL) ///< the figure of the upper edge
    Q_PROPERTY(qreal seconds READ seconds WRITE setSeconds NOTIFY changed FINAL) ///< the age of the left edge
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed FINAL)
public:
    explicit ChartItem(QQuickItem* parent = nullptr)
        : kestro::PictureItem(parent)
    {
    }

    const QList<QPointF>& points() const { return m_points; }
    void setPoints(const QList<QPointF>& points) { set(m_points, points); }
    qreal limit() const { return m_limit; }
    void setLimit(qreal limit) { set(m_limit, limit); }
    qreal seconds() const { return m_seconds; }
    void setSeconds(qreal seconds) { set(m_seconds, seconds); }
    QColor color() const { return m_color; }
    void setColor(const QColor& color) { set(m_color, color); }

Q_SIGNALS:
    void changed();

protected:
    QImage picture(QSize pixels, qreal ratio) override;

private:
    template <class T> void set(T& member, const T& value)
    {
        if (member == value)
            return;
        member = value;
        redraw();
        Q_EMIT changed();
    }

    QList<QPointF> m_points;
    qreal m_limit = 1;
    qreal m_seconds = 120;
    QColor m_color = Qt::blue;
};

} // namespace kestro
