#pragma once

#include "PictureItem.h"

#include <QBasicTimer>
#include <QColor>
#include <array>

namespace kestro {

/// Shows that work is in progress: eight steps a second, and none while it is not visible.
class Spinner : public kestro::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(bool turning READ isTurning NOTIFY turningChanged FINAL)
public:
    explicit Spinner(QQuickItem* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    /// Whether it is seen, and therefore moves.
    bool isTurning() const { return m_timer.isActive(); }

Q_SIGNALS:
    void colorChanged();
    void turningChanged();

protected:
    QImage picture(QSize pixels, qreal ratio) override;
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    void timerEvent(QTimerEvent* event) override;

private:
    static constexpr int spokes = 8; // and as many steps a second

    void turnIfSeen();

    QBasicTimer m_timer;
    QMetaObject::Connection m_windowShown;
    QColor m_color = Qt::gray;
    int m_step = 0;
    std::array<QImage, spokes> m_pictures; ///< one for each step, once it was shown: it may turn all day
};

} // namespace kestro
