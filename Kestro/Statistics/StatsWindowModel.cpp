#include "Kestro/Statistics/StatsWindowModel.h"

#include "Kestro/Platform/SystemCounters.h"
#include "Kestro/Platform/Workspace.h"
#include "Kestro/Statistics/StatsPreferences.h"

#include <QPointer>
#include <cmath>
#include <utility>

namespace kestro {

struct StatsWindowModel::Sampler {
    const SystemCounters& counters;
    std::unique_ptr<ProcessLister> lister;
    DetailedSampler sampler;
};

StatsWindowModel::StatsWindowModel(const Ports& ports, AppControl& control)
    : m_ports(ports)
    , m_apps(control, ports.workspace)
    , m_sections(statsSections(ports.counters))
{
    connect(&ports.preferences, &PreferenceStore::changed, this, [this] {
        if (m_timer && interval(m_ports.preferences) != m_interval)
            restart();
    });
}

StatsWindowModel::~StatsWindowModel() = default;

double StatsWindowModel::interval(const PreferenceStore& preferences)
{
    return prefs::statsRefreshInterval.read(preferences);
}

QList<QObject*> StatsWindowModel::sections() const
{
    QList<QObject*> all;
    for (const auto& each : m_sections)
        all.append(each.get());
    return all;
}

void StatsWindowModel::setPaused(bool paused)
{
    if (std::exchange(m_paused, paused) == paused)
        return;
    restart();
    Q_EMIT pausedChanged();
}

void StatsWindowModel::setVisible(bool visible)
{
    if (std::exchange(m_visible, visible) == visible)
        return;
    restart();
    Q_EMIT visibleChanged();
}

void StatsWindowModel::restart()
{
    m_timer.cancel();
    if (!m_visible || m_paused)
        return;
    refresh();
    m_interval = interval(m_ports.preferences);
    m_timer = m_ports.loop.every(m_interval, [this] { refresh(); });
}

void StatsWindowModel::refresh()
{
    if (std::exchange(m_inFlight, true))
        return;
    if (!m_sampler)
        m_sampler = std::make_shared<Sampler>(m_ports.counters, m_ports.processes.lister(), DetailedSampler());
    m_queue.async([sampler = m_sampler, &loop = m_ports.loop, model = QPointer(this)] {
        SystemReadings readings = sampler->counters.readings();
        const double moment = readings.moment;
        // Names in the user's language are the main thread's to look up.
        auto stats = std::make_shared<DetailedStats>(sampler->sampler.sample(
            std::move(readings), sampler->lister->list(), [](const QString&) { return std::nullopt; }));
        loop.post([model, stats, moment] {
            if (model)
                model->publish(std::move(*stats), moment);
        });
    });
}

void StatsWindowModel::publish(DetailedStats stats, double moment)
{
    m_inFlight = false;
    m_sampledAt = m_ports.loop.now();
    if (stats.apps)
        nameGroups(*stats.apps, m_ports.workspace);
    m_stats = std::move(stats);
    for (const auto& each : m_sections)
        each->show(*m_stats, moment);
    m_apps.show(m_stats->apps);
    Q_EMIT statsChanged();
}

QString StatsWindowModel::age() const
{
    if (!m_stats)
        return {};
    const double seconds = std::max(0.0, m_ports.loop.now() - m_sampledAt);
    const QString over = m_stats->seconds ? QString::asprintf("over %.1f s · ", *m_stats->seconds) : QString();
    return over + QStringLiteral("%1 s ago").arg(std::lround(seconds));
}

QString printStats(const SystemCounters& counters, ProcessTable& processes, const Workspace& workspace,
    const std::function<void(double)>& pass)
{
    const auto lister = processes.lister();
    DetailedSampler sampler;
    const auto name = [&](const QString& path) { return workspace.displayName(path); };
    sampler.sample(counters.readings(), lister->list(), name);
    pass(1.0);
    return statsReport(sampler.sample(counters.readings(), lister->list(), name));
}

} // namespace kestro
