#include "Kestro/Surfaces/SidebarState.h"

#include "KestroCore/Support/Geometry.h"

namespace kestro {

SidebarState::SidebarState(AppModel& model)
    : m_items(model)
{
}

void SidebarState::setPrefs(const SidebarPrefs& prefs, bool monochrome)
{
    m_prefs = prefs;
    m_monochrome = monochrome;
    m_items.setLive(prefs.liveTiles);
    Q_EMIT prefsChanged();
}

void SidebarState::setFrame(const SidebarFrame& frame)
{
    if (m_frame == frame)
        return;
    m_frame = frame;
    Q_EMIT frameChanged();
    m_items.show(frame, m_prefs.edge);
}

void SidebarState::refreshItems() { m_items.refresh(); }

void SidebarState::setRevealed(bool revealed, bool fades)
{
    if (m_revealed == revealed)
        return;
    m_fades = fades;
    m_revealed = revealed;
    Q_EMIT revealedChanged();
}

QRectF SidebarState::dockRect() const
{
    if (!m_frame)
        return {};
    const QRectF& dock = m_frame->dock;
    const QRectF& band = m_frame->band;
    return { dock.x() - band.x(), geometry::maxY(band) - geometry::maxY(dock), dock.width(), dock.height() };
}

SurfaceShape SidebarState::outline() const
{
    using Anchor = SurfaceShape::Anchor;
    if (collapsed())
        return { Anchor::none, DockGeometry::pillThickness / 2 };
    if (m_prefs.placement == DockPlacement::detached)
        return {};
    switch (m_prefs.edge) {
    case SidebarEdge::left:
        return { Anchor::left };
    case SidebarEdge::right:
        return { Anchor::right };
    case SidebarEdge::bottom:
        return { Anchor::bottom };
    }
    Q_UNREACHABLE();
}

void SidebarState::setFocusedRow(int row)
{
    if (m_focusedRow == row)
        return;
    m_focusedRow = row;
    Q_EMIT focusedRowChanged();
}

} // namespace kestro
