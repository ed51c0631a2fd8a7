#include "Kestro/Statistics/RunningAppsModel.h"

#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/ProcessTable.h"
#include "Kestro/Preferences/PreferenceKeys.h"

#include <QPointer>
#include <utility>

namespace kestro {

RunningAppsModel::RunningAppsModel(const Ports& ports)
    : m_ports(ports)
{
}

void RunningAppsModel::start()
{
    connect(&m_ports.preferences, &PreferenceStore::changed, this, &RunningAppsModel::sync);
    sync();
}

int RunningAppsModel::windows(const LaunchItem& item) const
{
    return RunningApps::windows(
        item, m_running, [this](const QString& path) { return m_ports.processes.resolved(path); });
}

void RunningAppsModel::sync()
{
    const bool on = prefs::dockRunningIndicators.read(m_ports.preferences);
    if (std::exchange(m_isOn, on) == on)
        return;
    if (!on) {
        m_watch.reset();
        return publish({});
    }
    m_watch = m_ports.windows.watch([this] { refresh(); });
    refresh();
}

// Which application a process is may need the disk: that is asked elsewhere, once for however many changes came
// meanwhile.
void RunningAppsModel::refresh()
{
    if (m_inFlight) {
        m_again = true;
        return;
    }
    m_inFlight = true;
    std::vector<qint32> pids;
    for (const DesktopWindow& each : m_ports.windows.all())
        pids.push_back(qint32(each.pid));
    m_queue.async(
        [model = QPointer(this), pids = std::move(pids), &processes = m_ports.processes, &loop = m_ports.loop] {
            RunningApps::Windows running;
            for (const qint32 pid : pids) {
                const auto path = pid > 0 ? processes.application(pid) : std::nullopt;
                if (path)
                    ++running[RunningApps::key(*path, [&](const QString& each) { return processes.resolved(each); })];
            }
            loop.post([model, running] {
                if (!model)
                    return;
                model->m_inFlight = false;
                if (model->m_isOn)
                    model->publish(running);
                if (std::exchange(model->m_again, false) && model->m_isOn)
                    model->refresh();
            });
        });
}

void RunningAppsModel::publish(RunningApps::Windows running)
{
    if (m_running == running)
        return;
    m_running = std::move(running);
    Q_EMIT changed();
}

} // namespace kestro
