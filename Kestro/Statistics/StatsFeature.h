#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Statistics/RunningAppsModel.h"
#include "Kestro/Statistics/StatsSettings.h"
#include "Kestro/Statistics/StatsWidget.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

class LauncherModel;
struct Platform;

/// The readings of this computer, taken only while a surface shows them. Main thread.
class StatsFeature final : public Feature {
    Q_OBJECT
    Q_PROPERTY(kestro::StatsSettings* settings READ settings CONSTANT)
public:
    /// All must outlive it.
    StatsFeature(FeatureHost& host, LauncherModel& launcher, const Platform& platform, const QString& home);
    ~StatsFeature() override;

    void start() override;
    std::vector<Widget*> widgets() override { return { &m_widget }; }
    QList<SettingsPane> panes() override;
    StatsCard* card() { return m_widget.card(); }
    StatsWindowModel& window() { return m_window; }
    const RunningAppsModel& running() const { return m_running; }
    StatsSettings* settings() { return &m_settings; }

private:
    struct TopApps; ///< used on the queue alone

    void syncStats();
    void sample();
    void sampleTopApps();
    void tell(const QString& text);

    SurfaceState& m_surface;
    LauncherModel& m_launcher;
    MainLoop& m_loop;
    const PreferenceStore& m_preferences;
    const SystemCounters& m_counters;
    ProcessTable& m_processes;
    const Workspace& m_workspace;
    AppControl m_control;
    StatsWindowModel m_window;
    StatsWidget m_widget;
    StatsSettings m_settings;
    RunningAppsModel m_running;
    std::optional<CPUTicks> m_lastTicks;
    Timer m_timer;
    WorkItem m_noticeWork;
    std::shared_ptr<TopApps> m_topApps; ///< while its card is shown
    bool m_appsInFlight = false;
    SerialQueue m_queue{ "kestro.top-apps" };
};

} // namespace kestro
