#pragma once

#include "KestroCore/Support/Date.h"

#include <QString>
#include <optional>

namespace kestro {

class MainLoop;
class PreferenceStore;
class TimerModel;

/// Shows brief notices beside the dock or the notch. Main thread.
class TimerNotices {
public:
    virtual ~TimerNotices() = default;

    /// False where an open card or an agent that waits for the user is in the way.
    virtual bool show(const QString& symbol, const QString& title) = 0;
};

/// Tells the user that the timer has ended. Main thread.
class TimerActivity {
public:
    /// Takes `model`'s `onDone`. All must outlive it.
    TimerActivity(TimerModel& model, MainLoop& loop, const PreferenceStore& preferences, TimerNotices& notices);
    TimerActivity(const TimerActivity&) = delete;
    TimerActivity& operator=(const TimerActivity&) = delete;
    ~TimerActivity();

    /// What was in the way of notices is gone: one that could not be shown is tried again, for a minute.
    void unblocked();

private:
    void post(Date since);

    TimerModel& m_model;
    MainLoop& m_loop;
    const PreferenceStore& m_preferences;
    TimerNotices& m_notices;
    std::optional<Date> m_pendingDone;
};

} // namespace kestro
