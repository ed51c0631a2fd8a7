#pragma once

#include "Kestro/Platform/MainLoop.h"

#include <QQuickWindow>
#include <QRegion>

namespace kestro {

class Panels;
class Screens;

/// A window that floats over the others without ever taking the focus. Nothing is drawn of it but its content.
/// Main thread.
class NotchPanel final : public QQuickWindow {
    Q_OBJECT
public:
    /// How far round its content a window reaches, so that a shadow has room to fall.
    static constexpr int shadowRoom = 24;
    static constexpr QPointF shadowOffset{ shadowRoom, shadowRoom };

    NotchPanel(Panels& panels, const Screens& screens);

    /// In screen coordinates (y upwards). A window that stands there already is left alone.
    void setFrame(const QRectF& frame);
    QRectF frame() const { return m_frame; }

    /// The painted part, in window coordinates: it takes the pointer and the rest lets it through.
    void setPaintedShape(const QRegion& shape);
    const QRegion& paintedShape() const { return m_shape; }
    /// While set, the pointer passes through the painted part too.
    void setIgnoresMouseEvents(bool ignores);

    /// Draws what has changed within the call rather than on a later turn.
    void drawNow();

    /// Shows the window above the others; a visible window keeps its place.
    void orderFront();
    void orderOut();
    /// Hides the window once its content has faded, unless it is ordered front before that.
    void orderOutAfter(MainLoop& loop, double seconds);

private:
    void applyShape();

    Panels& m_panels;
    const Screens& m_screens;
    QRectF m_frame;
    QRegion m_shape;
    bool m_ignoresMouseEvents = false;
    WorkItem m_orderOutWork;
};

} // namespace kestro
