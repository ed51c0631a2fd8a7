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

    /// Returns false if notices are blocked: a card is open, or an agent waits for the user.
    virtual bool show(const QString& symbol, const QString& title) = 0;
};

/// Tells the user that the timer has ended. Main thread.
class TimerActivity {
public:
    /// Replaces `model.onDone`. All arguments must outlive this object.
    TimerActivity(TimerModel& model, MainLoop& loop, const PreferenceStore& preferences, TimerNotices& notices);
    TimerActivity(const TimerActivity&) = delete;
    TimerActivity& operator=(const TimerActivity&) = delete;
    ~TimerActivity();

    /// Call this when notices are no longer blocked. Retries a blocked notice that is less than a minute old.
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
