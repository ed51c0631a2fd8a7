#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Statistics/StatsWidget.h"
#include "Kestro/Widgets/Feature.h"
#include "KestroCore/Statistics/Stats.h"

namespace kestro {

class SystemCounters;

/// The readings of processor and memory, taken only while a surface shows them. Main thread.
class StatsFeature final : public Feature {
    Q_OBJECT
public:
    /// The ports must outlive it.
    StatsFeature(FeatureHost& host, MainLoop& loop, const PreferenceStore& preferences, const SystemCounters& counters);

    void start() override;
    std::vector<Widget*> widgets() override { return { &m_widget }; }
    StatsCard* card() { return m_widget.card(); }

private:
    void syncStats();
    void sample();

    SurfaceState& m_surface;
    MainLoop& m_loop;
    const SystemCounters& m_counters;
    StatsWidget m_widget;
    std::optional<CPUTicks> m_lastTicks;
    Timer m_timer;
};

} // namespace kestro
