#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Surfaces/SidebarController.h"
#include "KestroCore/Support/Geometry.h"

namespace kestro {

QRectF SidebarController::dockOnScreen(int row) const
{
    const SidebarFrame& frame = *m_state.frame();
    return DockGeometry::screenRect(frame.iconRect(row, m_state.prefs().edge), frame.band);
}

void SidebarController::hoverItem(int row)
{
    m_hoveredRow = row;
    const LaunchItem item = m_state.items()->item(row);
    if (const auto kind = item.widget()) {
        m_toolTip.hide();
        m_model.setSelectedWidget(*kind);
        return;
    }
    if (item.isDivider() || !screen())
        return;
    // The text keeps clear of the whole strip, not of the icon alone.
    QRectF icon = dockOnScreen(row);
    const QRectF& dock = m_state.frame()->dock;
    if (m_state.prefs().edge == SidebarEdge::bottom)
        icon = { icon.x(), dock.y(), icon.width(), dock.height() };
    else
        icon = { dock.x(), icon.y(), dock.width(), icon.height() };
    m_toolTip.showSoon(m_model.launcher().displayName(item), icon, m_state.prefs().edge, screen()->visibleFrame);
}

void SidebarController::leaveItem(int row)
{
    // The next icon may have been entered already.
    if (row == m_hoveredRow)
        m_toolTip.hide();
}

void SidebarController::clickItem(int row)
{
    m_toolTip.hide();
    m_model.items().click(m_state.items()->item(row));
}

void SidebarController::openMenu(int row) { openMenuAt(row, m_platform.pointer.location()); }

void SidebarController::openMenuAt(int row, QPointF point)
{
    const auto on = screen();
    if (!on || m_menu)
        return;
    m_toolTip.hide();
    const SidebarEdge edge = m_state.prefs().edge;
    const auto beside = [dock = m_state.frame()->dock, bounds = on->visibleFrame, edge, point](QSizeF size) {
        return DockGeometry::cardFrame(size, dock, edge == SidebarEdge::bottom ? point.x() : point.y(), edge, bounds);
    };
    m_menu = std::make_unique<ItemMenu>(m_engine, m_platform,
        itemMenuEntries(m_model, m_state.items()->item(row), edge != SidebarEdge::bottom), beside,
        [this] { menuEnded(); });
    become(m_behavior.held(DockHold::menu));
}

void SidebarController::menuEnded()
{
    // Deferred delete: the menu is the caller.
    m_platform.loop.post([menu = std::shared_ptr<ItemMenu>(std::move(m_menu))] {});
    become(m_behavior.released(DockHold::menu));
    mouseMoved();
}

} // namespace kestro
