#include "Kestro/Widgets/SurfaceState.h"

#include <utility>

namespace kestro {

void SurfaceState::setExpanded(bool expanded)
{
    if (std::exchange(m_expanded, expanded) == expanded)
        return;
    if (!expanded)
        setSelectedWidget(std::nullopt);
    Q_EMIT expandedChanged();
}

void SurfaceState::setSelectedWidget(std::optional<WidgetKind> kind)
{
    const bool same = std::exchange(m_selectedWidget, kind) == kind;
    if (kind)
        Q_EMIT widgetPicked();
    if (!same)
        Q_EMIT selectedWidgetChanged();
}

void SurfaceState::setDockVisible(bool visible)
{
    if (std::exchange(m_dockVisible, visible) != visible)
        Q_EMIT visibilityChanged();
}

void SurfaceState::setDisplaysAsleep(bool asleep)
{
    if (std::exchange(m_displaysAsleep, asleep) != asleep)
        Q_EMIT visibilityChanged();
}

} // namespace kestro
