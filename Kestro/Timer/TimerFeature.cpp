#include "Kestro/Timer/TimerFeature.h"

#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Preferences/SidebarPrefs.h"

namespace kestro {

TimerFeature::TimerFeature(FeatureHost& host, LauncherModel& launcher, const TimerPorts& ports)
    : Feature(host)
    , m_surface(host.surface)
    , m_launcher(launcher)
    , m_preferences(ports.preferences)
    , m_model(ports.loop, ports.preferences, ports.session, ports.sounds)
    , m_readout(m_model, ports.loop)
    , m_widget(m_readout)
{
    if (ports.notices)
        m_activity.emplace(m_model, ports.loop, ports.preferences, *ports.notices);
}

void TimerFeature::start()
{
    connect(&m_launcher, &LauncherModel::storeChanged, this, &TimerFeature::followLayout);
    connect(&m_surface, &SurfaceState::visibilityChanged, this, &TimerFeature::followTile);
    connect(&m_preferences, &PreferenceStore::changed, this, &TimerFeature::followTile);
    connect(&m_surface, &SurfaceState::expandedChanged, this, [this] {
        if (m_activity && !m_surface.expanded())
            m_activity->unblocked();
    });
    followLayout();
}

void TimerFeature::followLayout()
{
    m_model.setActive(m_launcher.store().contains(WidgetKind::timer));
    followTile();
}

void TimerFeature::followTile()
{
    m_readout.setTileShown(m_model.active() && m_surface.dockVisible() && !m_surface.displaysAsleep()
        && SidebarPrefs::liveTilesOn(m_preferences));
}

} // namespace kestro
