#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/ProcessTable.h"
#include "Kestro/Statistics/AppsModel.h"
#include "Kestro/Statistics/StatsSection.h"
#include "KestroCore/Statistics/DetailedSampler.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QQmlEngine>

namespace kestro {

class PreferenceStore;
class SystemCounters;

/// The statistics window: samples while it is seen and not paused, at the interval that the settings name. Main thread.
class StatsWindowModel final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QList<QObject*> sections READ sections CONSTANT)
    Q_PROPERTY(kestro::AppsModel* apps READ apps CONSTANT)
    Q_PROPERTY(bool measured READ isMeasured NOTIFY statsChanged)
    Q_PROPERTY(bool paused READ isPaused WRITE setPaused NOTIFY pausedChanged)
    /// Whether somebody can see it; the view tells.
    Q_PROPERTY(bool visible READ isVisible WRITE setVisible NOTIFY visibleChanged)
public:
    struct Ports {
        MainLoop& loop;
        PreferenceStore& preferences;
        const SystemCounters& counters;
        ProcessTable& processes;
        const Workspace& workspace;
    };
    /// All must outlive it.
    StatsWindowModel(const Ports& ports, AppControl& control);
    ~StatsWindowModel() override;

    static double interval(const PreferenceStore& preferences);

    const std::optional<DetailedStats>& stats() const { return m_stats; }
    QList<QObject*> sections() const;
    AppsModel* apps() { return &m_apps; }
    bool isMeasured() const { return m_stats.has_value(); }
    bool isPaused() const { return m_paused; }
    void setPaused(bool paused);
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible);

    /// Begins anew with the interval that is set now.
    Q_INVOKABLE void restart();
    /// Samples at once.
    Q_INVOKABLE void refresh();
    /// "2 s ago", for the moment at which the pointer rests on a reading.
    Q_INVOKABLE QString age() const;

Q_SIGNALS:
    void statsChanged();
    void pausedChanged();
    void visibleChanged();

private:
    struct Sampler; ///< used on the queue alone

    void publish(DetailedStats stats, double moment);

    Ports m_ports;
    AppsModel m_apps;
    std::vector<std::unique_ptr<StatsSection>> m_sections;
    std::optional<DetailedStats> m_stats;
    Date m_sampledAt;
    bool m_paused = false;
    bool m_visible = false;
    bool m_inFlight = false;
    double m_interval = 0; ///< of the timer that runs
    Timer m_timer;
    std::shared_ptr<Sampler> m_sampler;
    SerialQueue m_queue{ "kestro.stats-window" };
};

/// Two samples, a second apart, and the second one as text. It blocks that long, for a program that does nothing else.
QString printStats(const SystemCounters& counters, ProcessTable& processes, const Workspace& workspace,
    const std::function<void(double)>& pass);

} // namespace kestro
