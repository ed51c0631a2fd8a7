#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Processes/RunningApps.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <memory>
#include <vector>

namespace kestro {

class DesktopWindows;
class PreferenceStore;
class ProcessTable;

/// Which applications have windows, and how many, for the marks below their items. The window manager's list tells when
/// to look; between two of its words nothing runs. Main thread.
class RunningAppsModel final : public QObject {
    Q_OBJECT
public:
    struct Ports {
        MainLoop& loop;
        const PreferenceStore& preferences;
        DesktopWindows& windows;
        const ProcessTable& processes;
    };
    /// All must outlive it.
    explicit RunningAppsModel(const Ports& ports);

    void start();
    int windows(const LaunchItem& item) const;
    const RunningApps::Windows& all() const { return m_running; }

Q_SIGNALS:
    void changed();

private:
    void sync();
    void refresh();
    void publish(RunningApps::Windows running);

    Ports m_ports;
    RunningApps::Windows m_running;
    std::shared_ptr<void> m_watch; ///< while the marks are on
    bool m_isOn = false;
    bool m_inFlight = false;
    bool m_again = false;
    SerialQueue m_queue{ "kestro.running-apps" };
};

} // namespace kestro
