#include "Kestro/Surfaces/ToolTip.h"

#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Style/SurfaceShape.h"
#include "Kestro/Surfaces/NotchPanel.h"
#include "Kestro/Surfaces/TrackingHostingView.h"
#include "KestroCore/Layout/DockGeometry.h"
#include "KestroCore/Support/Geometry.h"

#include <QQuickWindow>
#include <algorithm>

namespace kestro {

namespace {
constexpr double delay = 0.4;
constexpr double gap = 4;
constexpr double grace = 0.1;
} // namespace

ToolTip::ToolTip(const Platform& platform, QQmlEngine& engine)
    : m_platform(platform)
    , m_engine(engine)
{
}

ToolTip::~ToolTip() = default;

void ToolTip::showSoon(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen)
{
    hide();
    m_showWork = m_platform.loop.after(delay, [this, text, icon, edge, screen] {
        const double middle = edge == SidebarEdge::bottom ? geometry::midX(icon) : geometry::midY(icon);
        show(text, [&](QSizeF size) { return DockGeometry::cardFrame(size, icon, middle, edge, screen); });
    });
}

void ToolTip::entered(QQuickItem* item, const QString& text)
{
    if (item == m_item && item) {
        m_hideWork.cancel();
        return;
    }
    hide();
    if (!item || text.isEmpty())
        return;
    m_item = item;
    m_itemHidden = connect(item, &QQuickItem::visibleChanged, this, &ToolTip::hide);
    m_showWork = m_platform.loop.after(delay, [this, text] {
        if (m_item && m_item->window())
            show(text, [this](QSizeF size) { return below(*m_item, size); });
    });
}

void ToolTip::left(QQuickItem* item)
{
    // The next item may have been entered already. And when the text appears, the room for its shadow takes the pointer
    // from the item for an instant.
    if (item == m_item)
        m_hideWork = m_platform.loop.after(grace, [this] { hide(); });
}

void ToolTip::hide()
{
    m_showWork.cancel();
    m_hideWork.cancel();
    disconnect(m_itemHidden);
    m_item.clear();
    m_host.reset();
    m_window.reset();
}

QRectF ToolTip::below(const QQuickItem& item, QSizeF size) const
{
    const QRectF there =
        m_platform.screens.fromWindowSystem(QRectF(item.mapToGlobal(QPointF()), QSizeF(item.width(), item.height())));
    QRectF place(QPointF(there.x(), there.y() - gap - size.height()), size);
    for (const Screen& each : m_platform.screens.all()) {
        if (!geometry::contains(each.info.frame, there.center()))
            continue;
        const QRectF& free = each.visibleFrame;
        place.moveLeft(std::max(free.x(), std::min(place.x(), geometry::maxX(free) - size.width())));
        if (place.y() < free.y())
            place.moveTop(geometry::maxY(there) + gap);
        break;
    }
    return place;
}

void ToolTip::show(const QString& text, const Place& place)
{
    m_window = std::make_unique<QQuickWindow>();
    // Override-redirect: until a window manager had applied the input shape, the room for the shadow would take the
    // pointer from the item below, which would hide the text again.
    m_window->setFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    QSurfaceFormat format = m_window->requestedFormat();
    format.setAlphaBufferSize(8);
    m_window->setFormat(format);
    m_window->setColor(Qt::transparent);
    m_window->setTitle(QStringLiteral("Kestro Tooltip"));
    m_host = std::make_unique<TrackingHostingView>(*m_window, m_engine, QStringLiteral("ToolTipView"),
        QVariantMap{ { QStringLiteral("text"), text }, { QStringLiteral("shadowRoom"), NotchPanel::shadowRoom } });
    const QSizeF size(m_host->root().implicitWidth(), m_host->root().implicitHeight());
    m_window->setGeometry(
        m_platform.screens.toWindowSystem(geometry::grown(place(size), NotchPanel::shadowRoom)).toAlignedRect());
    m_platform.panels.setShape(*m_window, SurfaceShape{ .radius = 8 }.region(QRectF(NotchPanel::shadowOffset, size)));
    m_window->show();
}

} // namespace kestro
