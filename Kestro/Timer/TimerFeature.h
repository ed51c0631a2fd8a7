#pragma once

#include "Kestro/Timer/TimerActivity.h"
#include "Kestro/Timer/TimerModel.h"
#include "Kestro/Timer/TimerReadout.h"
#include "Kestro/Timer/TimerWidget.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

class LauncherModel;

/// The timer's ports.
struct TimerPorts {
    MainLoop& loop;
    PreferenceStore& preferences;
    const SessionEvents& session;
    Sounds& sounds;
    TimerNotices* notices = nullptr; ///< null where nothing shows notices
};

/// One countdown, which runs while the dock has a timer. Main thread.
class TimerFeature final : public Feature {
    Q_OBJECT
public:
    /// All must outlive it.
    TimerFeature(FeatureHost& host, LauncherModel& launcher, const TimerPorts& ports);

    void start() override;
    std::vector<Widget*> widgets() override { return { &m_widget }; }
    TimerModel& model() { return m_model; }

private:
    void followLayout();
    void followTile();

    const SurfaceState& m_surface;
    LauncherModel& m_launcher;
    const PreferenceStore& m_preferences;
    TimerModel m_model;
    std::optional<TimerActivity> m_activity;
    TimerReadout m_readout;
    TimerWidget m_widget;
};

} // namespace kestro
