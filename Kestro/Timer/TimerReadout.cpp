#include "Kestro/Timer/TimerReadout.h"

#include "Kestro/Timer/TimerModel.h"

#include <algorithm>

namespace kestro {

namespace {
constexpr double behindTheChange = 0.005; // seconds: a check before the change would have to be repeated
}

TimerReadout::TimerReadout(TimerModel& model, MainLoop& loop)
    : m_model(model)
    , m_loop(loop)
{
    connect(&model, &TimerModel::changed, this, &TimerReadout::refresh);
    refresh();
}

void TimerReadout::setCardShown(bool shown)
{
    m_cardShown = shown;
    refresh();
}

void TimerReadout::setTileShown(bool shown)
{
    m_tileShown = shown;
    refresh();
}

bool TimerReadout::isRunning() const { return m_model.state().isRunning(); }
bool TimerReadout::isIdle() const { return m_model.state().isIdle(); }
bool TimerReadout::isAtZero() const { return m_model.remaining() <= 0; }
bool TimerReadout::isAtMost() const { return m_model.remaining() >= TimerState::maxDuration; }
QList<int> TimerReadout::presets() { return { TimerState::presets.begin(), TimerState::presets.end() }; }

void TimerReadout::preset(int minutes) { m_model.preset(minutes); }
void TimerReadout::startOrPause() { m_model.startOrPause(); }
void TimerReadout::adjust(int minutes) { m_model.adjust(minutes); }
void TimerReadout::reset() { m_model.reset(); }

void TimerReadout::refresh()
{
    const double left = m_model.remaining();
    if ((m_cardShown || m_tileShown) && m_model.active() && isRunning() && left <= 0) {
        m_nextWork.cancel();
        return m_model.finishIfDue(); // which comes back here, with the timer at rest
    }
    const double length = std::max(m_model.state().duration, 1.0);
    const QString shortTime = TimerState::wingText(left);
    m_time = TimerState::format(left);
    scheduleNext();
    Q_EMIT changed();
    const double share = std::min(double(TimerState::wholeSeconds(left)) / length, 1.0);
    if (shortTime == m_shortTime && (isRunning() || share == m_share))
        return;
    m_shortTime = shortTime;
    m_share = share;
    Q_EMIT shortTimeChanged();
}

void TimerReadout::scheduleNext()
{
    m_nextWork.cancel();
    if (!isRunning() || (!m_cardShown && !m_tileShown))
        return;
    const double left = m_model.remaining();
    const qint64 whole = TimerState::wholeSeconds(left);
    if (whole == 0)
        return; // an end that nobody acts on
    const qint64 next = m_cardShown || whole <= 60 ? whole - 1 : (whole - 1) / 60 * 60;
    m_nextWork = m_loop.after(left - double(next) + behindTheChange, [this] { refresh(); });
}

} // namespace kestro
