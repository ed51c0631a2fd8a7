#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Timer/TimerState.h"

#include <QObject>
#include <functional>

namespace kestro {

class PreferenceStore;
class SessionEvents;
class Sounds;

/// The timer's state with persistence, the check at the end time, the sound and the callback. Main thread.
class TimerModel final : public QObject {
    Q_OBJECT
public:
    /// All must outlive it. `sound` may be null.
    TimerModel(MainLoop& loop, PreferenceStore& preferences, const SessionEvents& session, Sounds& sounds);

    const TimerState& state() const { return m_state; }
    double remaining() const { return m_state.remaining(m_loop.now()); }

    /// Whether the layout holds the timer widget. An inactive timer schedules nothing and ends silently.
    bool active() const { return m_active; }
    void setActive(bool active);

    void preset(int minutes);
    void startOrPause();
    void adjust(int minutes);
    void reset();
    /// Ends the timer if its end time has passed. The readout calls this too: the loop uses the monotonic clock, so
    /// after a change of the wall clock the scheduled check may be late.
    void finishIfDue();

    /// Whether the wings beside the notch show the timer. The agents' wings take precedence.
    bool showsWings(bool agentsShowWings) const { return !agentsShowWings && m_active && m_state.isRunning(); }

    /// Called when the timer ends while active.
    std::function<void()> onDone = [] {};

Q_SIGNALS:
    void changed();

private:
    void changeTo(const TimerState& state);
    void schedule();

    MainLoop& m_loop;
    PreferenceStore& m_preferences;
    Sounds& m_sounds;
    TimerState m_state;
    bool m_active = false;
    WorkItem m_finishWork;
};

} // namespace kestro
