#include "Kestro/Timer/TimerModel.h"

#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/SessionEvents.h"
#include "Kestro/Platform/Sounds.h"
#include "Kestro/Timer/TimerPreferences.h"
#include "KestroCore/Support/StorageError.h"

#include <algorithm>

namespace kestro {

namespace {

constexpr double checkDelay = 0.05; // seconds after the end time

TimerState storedState(const PreferenceStore& preferences)
{
    try {
        return TimerState::decode(prefs::timer::state.read(preferences).value_or(QByteArray()));
    } catch (const StorageError&) {
        return {};
    }
}

} // namespace

TimerModel::TimerModel(MainLoop& loop, PreferenceStore& preferences, const SessionEvents& session, Sounds& sounds)
    : m_loop(loop)
    , m_preferences(preferences)
    , m_sounds(sounds)
    , m_state(storedState(preferences))
{
    // The loop's monotonic clock does not advance during suspend.
    connect(&session, &SessionEvents::didWake, this, &TimerModel::finishIfDue);
}

void TimerModel::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    TimerState state = m_state;
    if (active && state.isFinished(m_loop.now()))
        state.reset();
    if (state != m_state)
        return changeTo(state);
    schedule();
    Q_EMIT changed();
}

void TimerModel::preset(int minutes)
{
    TimerState state = m_state;
    state.start(minutes, m_loop.now());
    changeTo(state);
}

void TimerModel::startOrPause()
{
    TimerState state = m_state;
    if (state.isRunning())
        state.pause(m_loop.now());
    else
        state.start(m_loop.now());
    changeTo(state);
}

void TimerModel::adjust(int minutes)
{
    TimerState state = m_state;
    state.adjust(minutes, m_loop.now());
    changeTo(state);
}

void TimerModel::reset()
{
    TimerState state = m_state;
    state.reset();
    changeTo(state);
}

void TimerModel::changeTo(const TimerState& state)
{
    m_state = state;
    prefs::timer::state.write(m_preferences, state.encode());
    schedule();
    Q_EMIT changed();
}

void TimerModel::schedule()
{
    m_finishWork.cancel();
    const auto until = m_state.until();
    if (!m_active || !until)
        return;
    const double left = std::max(0.0, *until - m_loop.now());
    m_finishWork = m_loop.after(left + checkDelay, [this] { finishIfDue(); });
}

void TimerModel::finishIfDue()
{
    if (!m_active || !m_state.isFinished(m_loop.now()))
        return schedule();
    reset();
    m_sounds.play(QStringLiteral("complete"));
    onDone();
}

} // namespace kestro
