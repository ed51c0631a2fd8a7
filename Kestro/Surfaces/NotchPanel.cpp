#include "Kestro/Surfaces/NotchPanel.h"

#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/Screens.h"

#include <QCoreApplication>

namespace kestro {

NotchPanel::NotchPanel(Panels& panels, const Screens& screens)
    : m_panels(panels)
    , m_screens(screens)
{
    QSurfaceFormat format = requestedFormat();
    format.setAlphaBufferSize(8);
    setFormat(format);
    setColor(Qt::transparent);
    m_panels.adopt(*this);
}

void NotchPanel::setFrame(const QRectF& frame)
{
    m_frame = frame;
    const QRect wanted = m_screens.toWindowSystem(frame).toAlignedRect();
    if (geometry() != wanted)
        setGeometry(wanted);
}

void NotchPanel::setPaintedShape(const QRegion& shape)
{
    if (m_shape == shape)
        return;
    m_shape = shape;
    applyShape();
}

void NotchPanel::setIgnoresMouseEvents(bool ignores)
{
    if (m_ignoresMouseEvents == ignores)
        return;
    m_ignoresMouseEvents = ignores;
    applyShape();
}

void NotchPanel::applyShape() { m_panels.setShape(*this, m_ignoresMouseEvents ? QRegion() : m_shape); }

void NotchPanel::drawNow()
{
    if (!isExposed())
        return;
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(this, &request);
}

void NotchPanel::orderFront()
{
    m_orderOutWork.cancel();
    if (isVisible())
        return;
    show();
    raise();
}

void NotchPanel::orderOut()
{
    m_orderOutWork.cancel();
    hide();
}

void NotchPanel::orderOutAfter(MainLoop& loop, double seconds)
{
    m_orderOutWork = loop.after(seconds, [this] { hide(); });
}

} // namespace kestro
