#include "Kestro/Surfaces/ToolTip.h"

#include "Kestro/Style/SurfaceShape.h"
#include "Kestro/Surfaces/NotchPanel.h"
#include "Kestro/Surfaces/TrackingHostingView.h"
#include "KestroCore/Layout/DockGeometry.h"
#include "KestroCore/Support/Geometry.h"

namespace kestro {

namespace {
constexpr double delay = 0.4;
}

ToolTip::ToolTip(const Platform& platform, QQmlEngine& engine)
    : m_platform(platform)
    , m_engine(engine)
{
}

ToolTip::~ToolTip() = default;

void ToolTip::showSoon(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen)
{
    hide();
    m_showWork = m_platform.loop.after(delay, [this, text, icon, edge, screen] { show(text, icon, edge, screen); });
}

void ToolTip::hide()
{
    m_showWork.cancel();
    m_host.reset();
    m_panel.reset();
}

void ToolTip::show(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen)
{
    m_panel = std::make_unique<NotchPanel>(m_platform.panels, m_platform.screens);
    m_panel->setTitle(QStringLiteral("Kestro Tooltip"));
    m_host = std::make_unique<TrackingHostingView>(*m_panel, m_engine, QStringLiteral("ToolTipView"),
        QVariantMap{ { QStringLiteral("text"), text }, { QStringLiteral("shadowRoom"), NotchPanel::shadowRoom } });
    const QSizeF size(m_host->root().implicitWidth(), m_host->root().implicitHeight());
    const double middle = edge == SidebarEdge::bottom ? geometry::midX(icon) : geometry::midY(icon);
    m_panel->setFrame(
        geometry::grown(DockGeometry::cardFrame(size, icon, middle, edge, screen), NotchPanel::shadowRoom));
    m_panel->setPaintedShape(SurfaceShape{ .radius = 8 }.region(QRectF(NotchPanel::shadowOffset, size)));
    m_panel->orderFront();
}

} // namespace kestro
