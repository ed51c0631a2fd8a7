#include "Kestro/Surfaces/CardPanel.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Style/SurfaceShape.h"
#include "Kestro/Surfaces/ToolTip.h"
#include "KestroCore/Support/Geometry.h"

namespace kestro {

namespace {

constexpr double slide = 12;

QPointF slideFrom(SidebarEdge edge)
{
    switch (edge) {
    case SidebarEdge::left:
        return { -slide, 0 };
    case SidebarEdge::right:
        return { slide, 0 };
    case SidebarEdge::bottom:
        return { 0, slide };
    }
    Q_UNREACHABLE();
}

} // namespace

CardPanel::CardPanel(AppModel& model, QQmlEngine& engine, ToolTip& toolTips)
    : m_panel(model.platform().panels, model.platform().screens)
    , m_host(m_panel, engine, QStringLiteral("SidebarCardView"),
          { { QStringLiteral("model"), QVariant::fromValue(&model) },
              { QStringLiteral("toolTips"), QVariant::fromValue(&toolTips) },
              { QStringLiteral("shadowRoom"), NotchPanel::shadowRoom } })
{
    m_panel.setTitle(QStringLiteral("Kestro Card"));
}

void CardPanel::place(const QRectF& target, SidebarEdge edge)
{
    if (m_target == target)
        return;
    const bool appears = !m_target;
    m_target = target;
    m_panel.setFrame(geometry::grown(target, NotchPanel::shadowRoom));
    m_panel.setPaintedShape(SurfaceShape().region(QRectF(NotchPanel::shadowOffset, target.size())));
    if (!appears)
        return;
    m_panel.orderFront();
    QMetaObject::invokeMethod(&m_host.root(), "appear", Q_ARG(QVariant, slideFrom(edge)));
}

void CardPanel::orderOut()
{
    if (!m_target)
        return;
    m_target.reset();
    m_panel.orderOut();
}

} // namespace kestro
