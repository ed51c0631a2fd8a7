#include "Kestro/Application/AppModel.h"

#include "Kestro/Platform/SystemCounters.h"

namespace kestro {

namespace {
constexpr double statsInterval = 2.0;
}

void AppModel::syncStats()
{
    if (!m_expanded) {
        m_statsTimer.cancel();
        return;
    }
    if (m_statsTimer)
        return;
    sampleStats();
    m_statsTimer = m_platform.loop.every(statsInterval, [this] { sampleStats(); });
}

void AppModel::sampleStats()
{
    const SystemCounters& counters = m_platform.counters;
    Stats stats;
    const auto ticks = counters.cpuTicks();
    if (ticks && m_lastTicks)
        stats.cpu = cpuUsage(*m_lastTicks, *ticks);
    m_lastTicks = ticks;
    stats.ramUsed = counters.ramUsed();
    stats.ramTotal = counters.ramTotal();
    m_stats = stats;
    m_statsCard.show(stats);
}

} // namespace kestro
