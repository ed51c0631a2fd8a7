#include "Kestro/Statistics/StatsFeature.h"

#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/SystemCounters.h"
#include "Kestro/Platform/Workspace.h"
#include "Kestro/Preferences/SidebarPrefs.h"
#include "Kestro/Style/Symbols.h"

#include <QFile>
#include <QPointer>

namespace kestro {

namespace {

constexpr double cardInterval = 2.0; // seconds
constexpr int topAppCount = 3;
constexpr double quitNoticeSeconds = 6;

} // namespace

struct StatsFeature::TopApps {
    std::unique_ptr<ProcessLister> lister;
    AppsSampler sampler;
};

StatsFeature::StatsFeature(FeatureHost& host, LauncherModel& launcher, const Platform& platform, const QString& home)
    : Feature(host)
    , m_surface(host.surface)
    , m_launcher(launcher)
    , m_loop(platform.loop)
    , m_preferences(platform.preferences)
    , m_counters(platform.counters)
    , m_processes(platform.processes)
    , m_workspace(platform.workspace)
    , m_control(platform.processes, platform.windows, platform.workspace)
    , m_window(
          { platform.loop, platform.preferences, platform.counters, platform.processes, platform.workspace }, m_control)
    , m_widget(platform.preferences, m_window,
          [ports = CleanupModel::Ports{ platform.loop, platform.preferences, platform.processes },
              folder = QFile::encodeName(home)] {
              const QByteArray data = qgetenv("XDG_DATA_HOME");
              return std::make_unique<CleanupModel>(ports,
                  CleanupRoots::below(folder, qgetenv("XDG_CACHE_HOME"), qgetenv("XDG_STATE_HOME")),
                  data.startsWith(folder + '/') ? data : folder + "/.local/share");
          })
    , m_settings(platform.preferences)
    , m_running({ platform.loop, platform.preferences, platform.windows, platform.processes })
{
    m_window.apps()->post = [this](const QString&, const QString& text) { tell(text); };
    connect(&m_surface, &SurfaceState::expandedChanged, this, &StatsFeature::syncStats);
    connect(&m_surface, &SurfaceState::visibilityChanged, this, &StatsFeature::syncStats);
    connect(&m_widget, &StatsWidget::cardShownChanged, this, &StatsFeature::sampleTopApps);
}

StatsFeature::~StatsFeature() = default;

void StatsFeature::start()
{
    connect(&m_launcher, &LauncherModel::storeChanged, this, &StatsFeature::syncStats);
    connect(&m_preferences, &PreferenceStore::changed, this, &StatsFeature::syncStats);
    m_lastTicks = m_counters.cpuTicks(); // so that the first opening has a share to show
    syncStats();
    m_running.start();
}

void StatsFeature::syncStats()
{
    const bool live = m_surface.dockVisible() && !m_surface.displaysAsleep() && SidebarPrefs::liveTilesOn(m_preferences)
        && m_launcher.store().contains(WidgetKind::stats);
    m_widget.setLive(live);
    const bool runs = live || m_surface.expanded();
    if (runs == bool(m_timer))
        return sampleTopApps();
    if (!runs) {
        m_timer.cancel();
        return sampleTopApps();
    }
    sample();
    m_timer = m_loop.every(cardInterval, [this] {
        sample();
        sampleTopApps();
    });
    sampleTopApps();
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
    if (const auto battery = m_counters.battery()) {
        stats.battery = battery->percent;
        stats.charging = battery->charging;
    }
    stats.tempC = m_counters.cpuTemperature();
    stats.gpu = m_counters.gpu();
    stats.ssdFree = m_counters.diskFree();
    m_widget.card()->show(stats);
}

void StatsFeature::sampleTopApps()
{
    if (!m_timer || !m_surface.expanded() || !m_widget.isCardShown()) {
        m_topApps.reset();
        card()->showTopApps(std::nullopt);
        return;
    }
    if (m_appsInFlight)
        return;
    m_appsInFlight = true;
    if (!m_topApps)
        m_topApps = std::make_shared<TopApps>(TopApps{ m_processes.lister(), {} });
    m_queue.async([sampler = m_topApps, &loop = m_loop, feature = QPointer(this)] {
        auto groups = sampler->sampler.sample(sampler->lister->list(), [](const QString&) { return std::nullopt; });
        if (groups)
            groups = AppGrouping::top(std::move(*groups), AppSort::cpu, topAppCount);
        loop.post([feature, sampler, groups = std::move(groups)]() mutable {
            if (!feature)
                return;
            feature->m_appsInFlight = false;
            // Closed meanwhile, and perhaps opened again: the next one starts with fresh counters.
            if (feature->m_topApps != sampler || !groups)
                return;
            nameGroups(*groups, feature->m_workspace);
            feature->card()->showTopApps(groups);
        });
    });
}

void StatsFeature::tell(const QString& text)
{
    m_widget.setNotice(text);
    m_noticeWork = m_loop.after(quitNoticeSeconds, [this] { m_widget.setNotice({}); });
}

QList<SettingsPane> StatsFeature::panes()
{
    return { { QStringLiteral("stats"), QStringLiteral("Stats"), symbols::gaugeMedium,
        QStringLiteral("Statistics/StatsPane"),
        { QStringLiteral("CPU processor"), QStringLiteral("Memory"), QStringLiteral("Battery"),
            QStringLiteral("CPU temperature"), QStringLiteral("GPU graphics"), QStringLiteral("SSD disk"),
            QStringLiteral("Stats window refresh") },
        this } };
}

} // namespace kestro
