#pragma once

#include "KestroCore/Layout/ScreenInfo.h"

#include <QList>
#include <QObject>
#include <QRect>
#include <QRectF>
#include <QString>

namespace kestro {

/// One screen. Rectangles are in screen coordinates: logical points, y upwards,
/// the origin at the bottom-left corner of the primary screen.
struct Screen {
    ScreenInfo info;
    QString name; ///< what the user calls it; two screens may share one
    QRectF visibleFrame; ///< `info.frame` without what panels reserve
    double scale = 1; ///< device pixels a point

    bool operator==(const Screen&) const = default;
};

/// The screens, and the one place where y is turned round. Main thread.
class Screens : public QObject {
    Q_OBJECT
public:
    /// The primary screen first; empty when there is none.
    virtual QList<Screen> all() const = 0;

    /// To the window system's coordinates (y downwards) and from them. The origin moves when the primary screen
    /// changes, so keep screen coordinates and convert at the moment of use.
    QRectF toWindowSystem(const QRectF& rect) const
    {
        return { rect.x() + origin().x(), origin().y() - rect.y() - rect.height(), rect.width(), rect.height() };
    }
    QRectF fromWindowSystem(const QRectF& rect) const
    {
        return { rect.x() - origin().x(), origin().y() - rect.y() - rect.height(), rect.width(), rect.height() };
    }
    QPointF fromWindowSystem(QPointF point) const { return { point.x() - origin().x(), origin().y() - point.y() }; }

Q_SIGNALS:
    /// A screen came, went, moved, was resized, or its visible frame changed. At most once a turn of the loop.
    void changed();

protected:
    /// The bottom-left corner of the primary screen, in the window system's coordinates.
    virtual QPointF origin() const = 0;
};

} // namespace kestro
