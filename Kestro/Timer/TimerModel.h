#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Timer/TimerState.h"

#include <QObject>
#include <functional>

namespace kestro {

class PreferenceStore;
class SessionEvents;
class TimerSound;

/// The one countdown: stored after each change, and checked once, at its end. Main thread.
class TimerModel final : public QObject {
    Q_OBJECT
public:
    /// All of these must outlive the model.
    TimerModel(MainLoop& loop, PreferenceStore& preferences, const SessionEvents& session, TimerSound& sound);

    const TimerState& state() const { return m_state; }
    double remaining() const { return m_state.remaining(m_loop.now()); }

    /// Whether the dock has a timer. While it has none, an end passes without a sound.
    bool active() const { return m_active; }
    void setActive(bool active);

    void preset(int minutes);
    void startOrPause();
    void adjust(int minutes);
    void reset();
    /// Ends the timer if its end has come. A view that shows 0:00 calls this: the loop's own check may come later,
    /// since the loop does not know when the clock was changed.
    void finishIfDue();

    /// Whether the readout beside the notch shows, which the agents' own takes the place of.
    bool showsWings(bool agentsShowWings) const { return !agentsShowWings && m_active && m_state.isRunning(); }

    /// Called at each end that was not missed.
    std::function<void()> onDone = [] {};

Q_SIGNALS:
    void changed();

private:
    void changeTo(const TimerState& state);
    void schedule();

    MainLoop& m_loop;
    PreferenceStore& m_preferences;
    TimerSound& m_sound;
    TimerState m_state;
    bool m_active = false;
    WorkItem m_finishWork;
};

} // namespace kestro
