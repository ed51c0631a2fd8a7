#include "Kestro/Statistics/StatsFeature.h"

#include "Kestro/Platform/SystemCounters.h"

namespace kestro {

namespace {
constexpr double interval = 2.0;
}

StatsFeature::StatsFeature(
    FeatureHost& host, MainLoop& loop, const PreferenceStore& preferences, const SystemCounters& counters)
    : Feature(host)
    , m_surface(host.surface)
    , m_loop(loop)
    , m_counters(counters)
    , m_widget(preferences)
{
    connect(&m_surface, &SurfaceState::expandedChanged, this, &StatsFeature::syncStats);
}

void StatsFeature::start()
{
    m_lastTicks = m_counters.cpuTicks(); // so that the first opening has a share to show
}

void StatsFeature::syncStats()
{
    if (!m_surface.expanded()) {
        m_timer.cancel();
        return;
    }
    if (m_timer)
        return;
    sample();
    m_timer = m_loop.every(interval, [this] { sample(); });
}

void StatsFeature::sample()
{
    Stats stats;
    const auto ticks = m_counters.cpuTicks();
    if (ticks && m_lastTicks)
        stats.cpu = cpuUsage(*m_lastTicks, *ticks);
    m_lastTicks = ticks;
    stats.ramUsed = m_counters.ramUsed();
    stats.ramTotal = m_counters.ramTotal();
    m_widget.card()->show(stats);
}

} // namespace kestro
